#include "event/InputChannel.h"

#include "event/Converter.h"
#include "event/EventHandler.h"
#include "event/OutputChannel.h"
#include "event/detail/BlockPool.h"
#include "event/detail/ReplacedInputs.h"
#include "util/Fatal.h"
#include "util/VoidPtrArray.h"

qzInputChannel::qzInputChannel(unsigned short type, void* object, Function function,
                               unsigned char coalesce)
    : object(object), function(function), coalesce(coalesce != 0), chained(0), type(type),
      pendingEvent(nullptr), refCount(0), outputs(nullptr) {}

qzInputChannel::~qzInputChannel() {
    qzReplacedInputs::destroyed(this);
    delete outputs;
    if (chained && object) static_cast<qzInputChannel*>(object)->delRef();
}

void qzInputChannel::destroy() {
    if (chained) {
        delete static_cast<qzConverter*>(this);
    } else {
        delete this;
    }
}

qzInputChannel* qzInputChannel::realInput() {
    qzInputChannel* channel = this;
    while (channel && channel->chained)
        channel = static_cast<qzInputChannel*>(channel->object);
    return channel;
}

void qzInputChannel::add(qzOutputChannel* output) {
    if (!outputs) outputs = new qzVoidPtrArray;
    outputs->append(output);
}

void qzInputChannel::remove(qzOutputChannel* output) {
    if (!outputs) return;
    const int index = outputs->find(output);
    if (index < 0) qzFatal("ic/oc connections busted");
    outputs->remove(static_cast<unsigned>(index), 1);
}

unsigned qzInputChannel::getNumberOfOutputs() const { return outputs ? outputs->length() : 0; }

void qzInputChannel::disconnect() {
    if (getNumberOfOutputs() == 0) return;
    addRef();
    while (const unsigned before = outputs->length()) {
        static_cast<qzOutputChannel*>((*outputs)[0])->remove(this);
        if (outputs->length() == before) qzFatal("ic/oc connections busted");
    }
    delRef();
}

// Nothing is touched after the purge: it may have destroyed the channel.
void qzInputChannel::flush() {
    pendingEvent = nullptr;
    qz_theEventHandler->removeMessageEvents(this);
}

void* qzInputChannel::operator new(std::size_t bytes) {
    return qzBlockPool<qzInputChannel>::take(bytes);
}
void qzInputChannel::operator delete(void* block, std::size_t bytes) {
    qzBlockPool<qzInputChannel>::giveBack(block, bytes);
}
