// qzSetIter: walks the keys of a set and survives their removal.
//
// Works as qzDictIter does; see util/DictIter.h. Unlike that class it has a
// virtual destructor.
#ifndef QZ_UTIL_SETITER_H
#define QZ_UTIL_SETITER_H

#include "util/ChainWalk.h"
#include "util/Set.h"

class QZ_EXPORT qzSetIter {
  public:
    qzSetIter() : set(nullptr), bucket(0), flags(0), node(nullptr) {}
    explicit qzSetIter(qzSet& s) : qzSetIter() { attach(s); }
    qzSetIter(const qzSetIter&) = delete;
    // Leaves the set it walked, if any, and starts on this one.
    qzSetIter& operator=(qzSet& s);
    qzSetIter& operator=(const qzSetIter&) = delete;
    virtual ~qzSetIter();

    // The current key; null while the key under the iterator has been removed,
    // and at the end.
    const void* getKey() const { return node && !removed() ? node->kvmem : nullptr; }

    qzSetIter& operator++() {
        if (!set) return *this;
        if (removed()) {
            flags &= ~removedBit;
        } else {
            step();
        }
        return *this;
    }

    bool removed() const { return flags & removedBit; }
    bool notDone() const { return node; }

    // For the set: leaves a node that is being removed.
    void leaveNode();
    bool attached() const { return set; }

    enum : unsigned char { removedBit = 1 };

    qzSet* set;          // null when finished or detached
    unsigned bucket;     // the chain it is in
    unsigned char flags; // bit 0: the key under it has gone, or it is finished
    qzSetBucket* node;   // the current key

  private:
    void attach(qzSet& s);
    void step() {
        node = node->next;
        if (!node && !qzEnterNextChain(*this, set->buckets)) finish();
    }
    void finish();
};

static_assert(sizeof(void*) != 4 || sizeof(qzSetIter) == 20, "typed iterators add no fields");

#endif
