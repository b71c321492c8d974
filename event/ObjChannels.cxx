// The inputs and outputs of an object: two dictionaries of channels by name, each
// the value of a property, whose deleter tears it down.
#include "event/Converter.h"
#include "event/EventTypes.h"
#include "event/Obj.h"
#include "event/OutputChannel.h"
#include "event/Property.h"
#include "event/detail/DoomedEvents.h"
#include "event/detail/ReplacedInputs.h"
#include "util/Fatal.h"
#include "util/StrArray.h"
#include "util/VoidPtrDict.h"
#include "util/VoidPtrDictIter.h"

const char qzObj::inputs[] = "inputs";
const char qzObj::outputs[] = "outputs";

namespace {

unsigned char endsAt(qzEvent* event, void* input) {
    if (event->getType() != qzET_MessageEvent) return 0;
    qzInputChannel* const channel = event->getChannel();
    return channel && channel->realInput() == input;
}

// Cuts the channel, which the caller holds, off from everything that could still
// deliver through it, converters included. Calls nothing back: that is left to
// the destruction of the doomed events.
void retire(qzInputChannel* input, qzDoomedEvents& doomed) {
    input->disconnect();
    const bool hasMessages = qz_theEventHandler && input->references() > 1;
    if (hasMessages) doomed.take(*qz_theEventHandler, endsAt, input);
}

void destroyInputs(void* dictionary) {
    qzVoidPtrDict* const inputs = static_cast<qzVoidPtrDict*>(dictionary);
    qzDoomedEvents doomed;
    for (qzVoidPtrDictIter i(inputs); i.notDone(); ++i) {
        qzInputChannel* const input = static_cast<qzInputChannel*>(*i.getValue());
        retire(input, doomed);
        input->delRef();
    }
    while (qzInputChannel* const replaced = qzReplacedInputs::take(inputs)) {
        replaced->addRef();
        retire(replaced, doomed);
        replaced->delRef();
    }
    delete inputs;
}

void destroyOutputs(void* dictionary) {
    qzVoidPtrDict* const outputs = static_cast<qzVoidPtrDict*>(dictionary);
    for (qzVoidPtrDictIter i(outputs); i.notDone(); ++i)
        delete static_cast<qzOutputChannel*>(*i.getValue());
    delete outputs;
}

template <class Channel> Channel* find(const qzVoidPtrDict* channels, const char* name) {
    void** const entry = channels ? channels->find(name) : nullptr;
    return entry ? static_cast<Channel*>(*entry) : nullptr;
}

// The old channel of the name, or null.
template <class Channel>
Channel* exchange(qzVoidPtrDict& channels, const char* name, Channel* channel) {
    void*& entry = channels[name];
    Channel* const old = static_cast<Channel*>(entry);
    entry = channel;
    return old;
}

} // namespace

// The tag of the property, if the name has one. It is looked up again only when the
// table of names has been made anew: every tick and connection comes through here.
unsigned short qzObj::channelsTag(const char* propertyName) {
    static unsigned short known[2];
    unsigned short& tag = known[propertyName == outputs];
    const qzStrArray* const names = qzProperty::qz_propertyNames;
    const bool isStill = names && tag < names->length() && (*names)[tag] == propertyName;
    if (!isStill) tag = qzProperty::findTag(propertyName);
    return tag;
}

qzProperty* qzObj::findChannels(const char* propertyName) const {
    const unsigned short tag = properties ? channelsTag(propertyName) : qzProperty::noTag;
    return tag == qzProperty::noTag ? nullptr : findProperty(tag);
}

qzVoidPtrDict* qzObj::channels(const char* propertyName) const {
    qzProperty* const property = findChannels(propertyName);
    return property ? static_cast<qzVoidPtrDict*>(property->getAsVoidPtr()) : nullptr;
}

qzVoidPtrDict& qzObj::makeChannels(const char* propertyName, void (*deleter)(void*)) {
    if (qzVoidPtrDict* const existing = channels(propertyName)) return *existing;
    unsigned short tag = channelsTag(propertyName);
    if (tag == qzProperty::noTag) tag = qzProperty::allocNewTag(propertyName);
    if (tag == qzProperty::noTag) qzFatal("no property tag is left for \"%s\"", propertyName);
    qzVoidPtrDict* const made = new qzVoidPtrDict;
    setProperty(new qzProperty(tag, made, deleter));
    return *made;
}

qzInputChannel* qzObj::addInput(const char* name, unsigned short type, void* object,
                                void (*function)(), unsigned char coalesce) {
    qzInputChannel* const input = new qzInputChannel(type, object, function, coalesce);
    input->addRef();
    qzVoidPtrDict& channels = makeChannels(inputs, destroyInputs);
    if (qzInputChannel* const old = exchange(channels, name, input)) {
        if (old->references() > 1) qzReplacedInputs::add(old, &channels);
        old->delRef();
    }
    return input;
}

qzOutputChannel* qzObj::addOutput(const char* name, unsigned short type) {
    qzOutputChannel* const output = new qzOutputChannel(type);
    delete exchange(makeChannels(outputs, destroyOutputs), name, output);
    return output;
}

qzOutputChannel* qzObj::findOutput(const char* name) const {
    return find<qzOutputChannel>(channels(outputs), name);
}

void qzObj::removeInput(const char* name) {
    qzVoidPtrDict* const channels = this->channels(inputs);
    qzInputChannel* const input = find<qzInputChannel>(channels, name);
    if (!input) return;
    qzDoomedEvents doomed;
    channels->remove(name);
    retire(input, doomed);
    input->delRef();
}

void qzObj::removeOutput(const char* name) {
    qzVoidPtrDict* const channels = this->channels(outputs);
    qzOutputChannel* const output = find<qzOutputChannel>(channels, name);
    if (!output) return;
    channels->remove(name);
    delete output;
}

void qzObj::connect(const char* outputName, qzObj* target, const char* inputName) {
    qzOutputChannel* const output = find<qzOutputChannel>(channels(outputs), outputName);
    qzInputChannel* const input = find<qzInputChannel>(target->channels(inputs), inputName);
    if (output && input && !output->isConnectedTo(input)) output->add(input);
}

void qzObj::disconnect(const char* outputName, qzObj* target, const char* inputName) {
    qzOutputChannel* const output = find<qzOutputChannel>(channels(outputs), outputName);
    qzInputChannel* const input = find<qzInputChannel>(target->channels(inputs), inputName);
    if (output && input) output->remove(input);
}
