#include "event/detail/FanOut.h"

qzFanOut* qzFanOut::innermost;

void qzFanOut::skip(unsigned index) {
    if (index >= end) return;
    --end;
    if (index < position) {
        --position;
    } else if (index == position) {
        standing = false;
    }
}

void qzFanOut::removed(const qzOutputChannel* from, unsigned index) {
    for (qzFanOut* walk = innermost; walk; walk = walk->outer)
        if (&walk->output == from) walk->skip(index);
}

void qzFanOut::ended(const qzOutputChannel* gone) {
    for (qzFanOut* walk = innermost; walk; walk = walk->outer) {
        if (&walk->output != gone) continue;
        walk->end = 0;
        walk->standing = false;
    }
}
