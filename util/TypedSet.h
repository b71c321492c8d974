// qzTypedSet: the pattern of the typed sets.
//
//     class qzStrSet : public qzTypedSet<qzStrSet, qzStrKeys>
//
// Works as the pattern of the typed dictionaries; see util/TypedDictionary.h.
#ifndef QZ_UTIL_TYPEDSET_H
#define QZ_UTIL_TYPEDSET_H

#include "util/SetIter.h"
#include "util/TmpSet.h"
#include "util/TypedKeys.h"
#include "xdr/StreamSize.h"

template <class Derived, class Keys>
class QZ_EXPORT qzTypedSet : public qzTypedKeys<qzSet, Keys, Derived> {
    using Base = qzTypedKeys<qzSet, Keys, Derived>;

  public:
    using typename Base::Key;

    // initialBuckets chains, 31 when that is 0.
    explicit qzTypedSet(unsigned initialBuckets = 0) : Base(sizeof(Key), initialBuckets) {}
    // Of empty sets only; see qzSet.
    qzTypedSet(const qzTypedSet& other) : Base(other) {}
    explicit qzTypedSet(qzTypeObj& type) : Base(type) { this->keySize = sizeof(Key); }
    ~qzTypedSet() override { this->cleanup(); }

    qzTypedSet& operator=(const qzTypedSet& other) {
        qzSet::operator=(other);
        return *this;
    }

    void add(const Key& key) { this->addAt(this->place(key), &key); }
    bool contains(const Key& key) const { return this->blockOf(key); }
    // Address of the stored key, or null.
    const Key* find(const Key& key) const {
        return reinterpret_cast<const Key*>(this->blockOf(key));
    }
    // The key is taken by value: it may be the set's own.
    void remove(Key key) { this->removeAt(this->place(key)); }

    Derived& operator|=(const Derived& other) {
        this->unite(other, this->keyKind());
        return *operator&();
    }
    Derived& operator&=(const Derived& other) {
        this->intersect(other, other.keyKind());
        return *operator&();
    }
    Derived& operator-=(const Derived& other) {
        this->subtract(other, this->keyKind());
        return *operator&();
    }
    // Print that they are missing, and abort; see qzSet.
    qzTmpSet operator|(const Derived& other) const { return qzSet::operator|(other); }
    qzTmpSet operator&(const Derived& other) const { return qzSet::operator&(other); }
    qzTmpSet operator-(const Derived& other) const { return qzSet::operator-(other); }
    // With a binary & in the class, the address of a set still means this.
    Derived* operator&() { return static_cast<Derived*>(this); }
    const Derived* operator&() const { return static_cast<const Derived*>(this); }

    unsigned char doxdr(qzTranscriber& t) {
        if (t.isReading()) this->keySize = sizeof(Key); // the copy of an empty set has none
        return this->xdrKeys(t, this->keySize ? qzStreamSize<Key>() : 0);
    }
};

// qzTypedSetIter: the iterator of a member; what it points at has its type.
template <class Set> class QZ_EXPORT qzTypedSetIter : public qzSetIter {
  public:
    using Key = typename Set::Key;

    qzTypedSetIter() {}
    explicit qzTypedSetIter(Set& s) : qzSetIter(s) {}
    explicit qzTypedSetIter(Set* s) : qzSetIter(*s) {}
    qzTypedSetIter& operator=(Set& s) {
        qzSetIter::operator=(s);
        return *this;
    }

    qzTypedSetIter& operator++() {
        qzSetIter::operator++();
        return *this;
    }

    const Key* getKey() const { return static_cast<const Key*>(qzSetIter::getKey()); }
};

#endif
