// qzTypedKeys: what typed dictionaries and sets do with their keys.
//
// Base is qzDictionary or qzSet; Keys names the key type and tells how to hash
// and compare it (see util/StrKeys.h); Derived is the member of the family.
#ifndef QZ_UTIL_TYPEDKEYS_H
#define QZ_UTIL_TYPEDKEYS_H

#include <typeinfo>

#include "util/KeyKind.h"
#include "util/TypedEntry.h"

template <class Base, class Keys, class Derived> class QZ_EXPORT qzTypedKeys : public Base {
  public:
    using Key = typename Keys::Key;

  protected:
    static constexpr qzKeyKind kind = qzKindOfKeys<Keys>;

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
    // The kind of keys that the base may rely on.
    qzKeyKind keyKind() const { return hooksAreOurs() ? kind : qzKeyKind::other; }
    Place place(const Key& key) const {
        if (this->size() == 0 || !hooksAreOurs()) return this->locate(&key);
        return usesIndex() ? this->locateIndexed(&key, chainOf(key), kind) : walkTo(key);
    }
    // The block of the key's entry, or null.
    char* blockOf(const Key& key) const {
        if (usesIndex() && hooksAreOurs()) return this->findIndexed(&key, kind);
        const auto* const node = place(key).node;
        return node ? node->kvmem : nullptr;
    }

  private:
    bool usesIndex() const { return kind != qzKeyKind::other && this->isLarge(); }
    unsigned chainOf(const Key& key) const { return Keys::hash(key) % this->buckets.length(); }
    // Goes to the index when the chain is long, as those of keys with a common start
    // are in small containers, too.
    Place walkTo(const Key& key) const {
        unsigned left = 8;
        const unsigned chain = chainOf(key);
        auto* previous = Place().previous;
        for (auto* node = this->buckets[chain]; node; previous = node, node = node->next) {
            if (Keys::compare(key, qzTypedEntry<Key>::at(node->kvmem)) == 0) {
                return {chain, node, previous, 0};
            }
            if (kind != qzKeyKind::other && --left == 0 && this->mayHaveIndex()) {
                return this->locateIndexed(&key, chain, kind);
            }
        }
        return {chain, nullptr, nullptr, 0};
    }
};

#endif
