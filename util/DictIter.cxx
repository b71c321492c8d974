#include "util/DictIter.h"

qzDictIter& qzDictIter::operator=(qzDictionary& d) {
    if (dict) dict->removeIter(this);
    attach(d);
    return *this;
}

void qzDictIter::attach(qzDictionary& d) {
    dict = &d;
    d.addIter(this);
    flags &= ~removedBit;
    bucket = ~0u; // in front of the first chain
    if (!qzEnterNextChain(*this, dict->buckets)) finish();
}

void qzDictIter::finish() {
    dict->removeIter(this);
    dict = nullptr;
    flags |= removedBit;
}

// Also for an iterator that is already behind a removed entry: the next one is
// being removed now, so it has to move on rather than clear its state.
void qzDictIter::leaveNode() {
    step();
    if (dict) flags |= removedBit;
}
