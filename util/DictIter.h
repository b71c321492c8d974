// qzDictIter: walks the entries of a dictionary and survives their removal.
//
//     for (qzStrStrDictionaryIter i(dict); i.notDone(); ++i)
//         if (wanted(*i.getKey())) dict.remove(*i.getKey());
//
// When the entry under it is removed, the iterator moves to the following one
// but reports null until the next ++, which then only clears that state: a loop
// may remove the current entry and increment as usual. Entries added during the
// walk may or may not be met.
//
// Ownership: borrows the dictionary, which knows it while it is attached; a
// dictionary that goes first detaches it.
// Cost: a step is inline; reaching the end and destruction search the registry.
#ifndef QZ_UTIL_DICTITER_H
#define QZ_UTIL_DICTITER_H

#include "util/ChainWalk.h"
#include "util/Dictionary.h"

class QZ_EXPORT qzDictIter {
  public:
    qzDictIter() : dict(nullptr), bucket(0), flags(0), node(nullptr) {}
    explicit qzDictIter(qzDictionary& d) : qzDictIter() { attach(d); }
    qzDictIter(const qzDictIter&) = delete;
    // Leaves the dictionary it walked, if any, and starts on this one.
    qzDictIter& operator=(qzDictionary& d);
    qzDictIter& operator=(const qzDictIter&) = delete;
    ~qzDictIter() {
        if (dict) dict->removeIter(this);
    }

    // The current key and value; null while the entry under the iterator has
    // been removed, and at the end.
    const void* getKey() const { return current() ? node->kvmem : nullptr; }
    void* getValue() const { return current() ? node->kvmem + dict->getKeySize() : nullptr; }

    qzDictIter& operator++() {
        if (!dict) return *this;
        if (removed()) {
            flags &= ~removedBit;
        } else {
            step();
        }
        return *this;
    }

    bool removed() const { return flags & removedBit; }
    bool notDone() const { return node; }

    // For the dictionary: leaves a node that is being removed.
    void leaveNode();
    bool attached() const { return dict; }

    enum : unsigned char { removedBit = 1 };

    qzDictionary* dict;  // null when finished or detached
    unsigned bucket;     // the chain it is in
    unsigned char flags; // bit 0: the entry under it has gone, or it is finished
    qzDictBucket* node;  // the current entry

  private:
    bool current() const { return node && !removed(); }
    void attach(qzDictionary& d);
    void step() {
        node = node->next;
        if (!node && !qzEnterNextChain(*this, dict->buckets)) finish();
    }
    void finish();
};

static_assert(sizeof(void*) != 4 || sizeof(qzDictIter) == 16, "typed iterators add no fields");

#endif
