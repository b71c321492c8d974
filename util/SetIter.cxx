#include "util/SetIter.h"

qzSetIter& qzSetIter::operator=(qzSet& s) {
    if (set) set->removeIter(this);
    attach(s);
    return *this;
}

qzSetIter::~qzSetIter() {
    if (set) set->removeIter(this);
}

void qzSetIter::attach(qzSet& s) {
    set = &s;
    s.addIter(this);
    flags &= ~removedBit;
    bucket = ~0u; // in front of the first chain
    if (s.size() == 0 || !qzEnterNextChain(*this, set->buckets)) finish();
}

void qzSetIter::finish() {
    set->removeIter(this);
    set = nullptr;
    flags |= removedBit;
}

void qzSetIter::leaveNode() {
    step();
    if (set) flags |= removedBit;
}
