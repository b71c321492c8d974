#include "event/detail/ReplacedInputs.h"

qzReplacedInputs::Entry* qzReplacedInputs::first;

template <class Condition> qzInputChannel* qzReplacedInputs::takeIf(Condition holds) {
    for (Entry** link = &first; *link; link = &(*link)->next) {
        Entry* const entry = *link;
        if (!holds(*entry)) continue;
        qzInputChannel* const channel = entry->channel;
        *link = entry->next;
        delete entry;
        return channel;
    }
    return nullptr;
}

void qzReplacedInputs::add(qzInputChannel* channel, const qzVoidPtrDict* inputs) {
    first = new Entry{channel, inputs, first};
}

qzInputChannel* qzReplacedInputs::take(const qzVoidPtrDict* inputs) {
    return takeIf([inputs](const Entry& entry) { return entry.inputs == inputs; });
}

void qzReplacedInputs::forget(const qzInputChannel* gone) {
    takeIf([gone](const Entry& entry) { return entry.channel == gone; });
}
