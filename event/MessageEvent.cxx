#include "event/MessageEvent.h"

#include "event/Data.h"
#include "event/EventTypes.h"
#include "event/InputChannel.h"
#include "event/detail/BlockPool.h"

qzMessageEvent::qzMessageEvent(qzInputChannel* channel, qzData* data)
    : qzEvent(qzET_MessageEvent), channel(channel), data(data) {
    channel->addRef();
    data->addRef();
}

qzMessageEvent::qzMessageEvent(const qzMessageEvent& other)
    : qzEvent(other), channel(other.channel), data(other.data) {
    channel->addRef();
    data->addRef();
}

qzMessageEvent::~qzMessageEvent() {
    leave();
    if (channel->getPendingEvent() == this) channel->setPendingEvent(nullptr);
    channel->delRef();
    data->delRef();
}

// The receiver may destroy the event: both ends are held here as well.
void qzMessageEvent::deliver() {
    qzInputChannel* const to = channel;
    qzData* const value = data;
    to->setPendingEvent(nullptr);
    to->addRef();
    value->addRef();
    value->deliverTo(to->getFunction(), to->getObject());
    value->delRef();
    to->delRef();
}

void qzMessageEvent::dump(FILE* out) { qzEvent::dump(out); }

qzInputChannel* qzMessageEvent::getChannel() { return channel; }

void* qzMessageEvent::operator new(std::size_t bytes) {
    return qzBlockPool<qzMessageEvent>::take(bytes);
}
void qzMessageEvent::operator delete(void* block, std::size_t bytes) {
    qzBlockPool<qzMessageEvent>::giveBack(block, bytes);
}
