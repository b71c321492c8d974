// qzTypedKeys: what typed dictionaries and sets do with their keys.
//
// Base is qzDictionary or qzSet; Keys names the key type and tells how to hash
// and compare it (see util/StrKeys.h); Derived is the member of the family.
#ifndef QZ_UTIL_TYPEDKEYS_H
#define QZ_UTIL_TYPEDKEYS_H

#include <typeinfo>

#include "util/TypedEntry.h"

template <class Base, class Keys, class Derived> class QZ_EXPORT qzTypedKeys : public Base {
  public:
    using Key = typename Keys::Key;

  protected:
    using Base::Base;
    using typename Base::Place;

    unsigned hashKey(const void* key) const override {
        return Keys::hash(qzTypedEntry<Key>::at(key));
    }
    int compareKeys(const void* a, const void* b) const override {
        return Keys::compare(qzTypedEntry<Key>::at(a), qzTypedEntry<Key>::at(b));
    }
    void copyKey(const void* src, void* dst) const override { qzTypedEntry<Key>::copy(src, dst); }
    void destroyKey(void* key) const override { qzTypedEntry<Key>::destroy(key); }
    unsigned char xdrKey(qzTranscriber& t, void* key) override {
        return qzTypedEntry<Key>::xdr(t, key);
    }

    // A class derived from the member may have other hooks; without one the
    // compiler knows them, and lookups need not call them.
    bool hooksAreOurs() const { return typeid(*this) == typeid(Derived); }
    Place place(const Key& key) const {
        if (this->size() == 0 || !hooksAreOurs()) return this->locate(&key);
        const unsigned chain = Keys::hash(key) % this->buckets.length();
        return Place::find(this->buckets, chain, [&key](const void* nodeKey) {
            return Keys::compare(key, qzTypedEntry<Key>::at(nodeKey)) == 0;
        });
    }
};

#endif
