#include "event/detail/FanOut.h"

qzFanOut* qzFanOut::innermost;

void qzFanOut::keep(qzInputChannel* entry) {
    entry->addRef();
    removedEntry = entry;
}

// The position from which to go on.
unsigned qzFanOut::afterDisturbance() {
    disturbed = false;
    if (!removedEntry) return position + 1;
    qzInputChannel* const entry = removedEntry;
    removedEntry = nullptr;
    entry->delRef();
    return position;
}

void qzFanOut::skip(unsigned index, qzInputChannel* entry) {
    if (index >= end) return;
    --end;
    if (index < position) {
        --position;
    } else if (index == position && stands()) {
        keep(entry);
    }
}

void qzFanOut::added(const qzOutputChannel* to) {
    for (qzFanOut* walk = innermost; walk; walk = walk->outer)
        if (&walk->output == to) walk->disturbed = true;
}

void qzFanOut::removed(const qzOutputChannel* from, unsigned index, qzInputChannel* entry) {
    for (qzFanOut* walk = innermost; walk; walk = walk->outer) {
        if (&walk->output != from) continue;
        walk->disturbed = true;
        walk->skip(index, entry);
    }
}

void qzFanOut::ended(const qzOutputChannel* gone) {
    for (qzFanOut* walk = innermost; walk; walk = walk->outer) {
        if (&walk->output != gone) continue;
        if (walk->position < walk->end && walk->stands()) walk->keep((*gone)[walk->position]);
        walk->disturbed = true;
        walk->end = 0;
    }
}
