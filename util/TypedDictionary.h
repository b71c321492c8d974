// qzTypedDictionary: the pattern of the typed dictionaries.
//
// A member of the family fixes key and value types and has no fields of its
// own; keys and values are constructed in place in the base's blocks.
//
//     class qzVoidPtrDict : public qzTypedDictionary<qzVoidPtrDict, qzStrKeys, void*>
//
// Derived is the member itself and overrides none of the hooks for keys and
// values: lookups through it do not call them. A class derived from a member
// may, and has them called. Keys names the key type and tells how to hash
// and compare it; see util/StrKeys.h.
//
// Ownership: values that are pointers are not owned.
// Cost, errors and order are qzDictionary's.
#ifndef QZ_UTIL_TYPEDDICTIONARY_H
#define QZ_UTIL_TYPEDDICTIONARY_H

#include "util/DictIter.h"
#include "util/Dictionary.h"
#include "util/TypedKeys.h"
#include "xdr/StreamSize.h"

template <class Derived, class Keys, class V>
class QZ_EXPORT qzTypedDictionary : public qzTypedKeys<qzDictionary, Keys, Derived> {
    using Base = qzTypedKeys<qzDictionary, Keys, Derived>;

  public:
    using typename Base::Key;
    using Value = V;

    // initialBuckets chains, 31 when that is 0.
    explicit qzTypedDictionary(unsigned initialBuckets = 0)
        : Base(sizeof(Key), sizeof(Value), initialBuckets) {}
    // Has the source's chains, each in reverse order.
    qzTypedDictionary(const qzTypedDictionary& other);
    explicit qzTypedDictionary(qzTypeObj& type) : Base(type) {
        this->keySize = sizeof(Key);
        this->valueSize = sizeof(Value);
    }
    ~qzTypedDictionary() override { this->cleanup(); }

    // Merges, as qzDictionary's does.
    qzTypedDictionary& operator=(const qzTypedDictionary& other) {
        qzDictionary::operator=(other);
        return *this;
    }

    const char* className() const override { return "DICT"; }
    qzDictBucket* addInternal(const void* key, const void* value) override;

    // Inserts the entry, or replaces the value of a key that is here.
    void add(const Key& key, const Value& value) { addInternal(&key, &value); }
    // Address of the value, or null. Deliberate: the second argument is accepted
    // and never written; callers pass what they have at hand. Pinned by
    // qzStrStrDictionary.FindLeavesItsSecondArgumentAlone.
    Value* find(const Key& key, Value** = nullptr) const {
        char* const block = this->blockOf(key);
        return block ? reinterpret_cast<Value*>(block + sizeof(Key)) : nullptr;
    }
    // The value; an absent key is inserted with an empty one (null, 0).
    Value& operator[](const Key& key) {
        if (this->size() == 0) return *static_cast<Value*>(this->findCreate(&key));
        return *static_cast<Value*>(this->valueAt(this->place(key), &key));
    }
    // Removes the entry; returns a block from malloc that holds its live value,
    // to be destroyed and freed by the caller, or null. The key is taken by
    // value: it may be the dictionary's own.
    Value* cut(Key key) { return static_cast<Value*>(this->cutAt(this->place(key))); }
    void remove(Key key) { this->removeAt(this->place(key)); }

    unsigned char doxdr(qzTranscriber& t) {
        return this->xdrEntries(t, qzStreamSize<Key>(), qzStreamSize<Value>());
    }

  protected:
    // slots 12-14 and 16
    void copyValue(const void* src, void* dst) const override {
        qzTypedEntry<Value>::copy(src, dst);
    }
    void destroyValue(void* value) const override { qzTypedEntry<Value>::destroy(value); }
    void createValue(void* dst) const override { qzTypedEntry<Value>::create(dst); }
    unsigned char xdrValue(qzTranscriber& t, void* value) override {
        return qzTypedEntry<Value>::xdr(t, value);
    }

  private:
    using typename Base::Place;
};

// Every entry keeps its chain: that is right for any hash, and a class derived
// from the member may have one of its own, which does not run yet.
template <class Derived, class Keys, class V>
qzTypedDictionary<Derived, Keys, V>::qzTypedDictionary(const qzTypedDictionary& other)
    : Base(other) {
    for (unsigned chain = 0; chain < other.buckets.length(); ++chain) {
        for (const qzDictBucket* node = other.buckets[chain]; node; node = node->next) {
            char* block = this->newBlock();
            qzTypedEntry<Key>::copy(node->kvmem, block);
            qzTypedEntry<Value>::copy(other.valueOf(node), block + sizeof(Key));
            this->link(chain, block);
        }
    }
}

template <class Derived, class Keys, class V>
qzDictBucket* qzTypedDictionary<Derived, Keys, V>::addInternal(const void* key, const void* value) {
    if (!this->hooksAreOurs() || this->buckets.length() == 0) {
        return qzDictionary::addInternal(key, value);
    }
    const Place at = this->place(qzTypedEntry<Key>::at(key));
    if (at.node) return this->replaceValue(at.node, value);
    char* block = this->newBlock();
    qzTypedEntry<Key>::copy(key, block);
    qzTypedEntry<Value>::copy(value, block + sizeof(Key));
    return this->link(at, block);
}

// qzTypedDictIter: the iterator of a member; what it points at has its type.
template <class Dictionary> class qzTypedDictIter : public qzDictIter {
  public:
    using Key = typename Dictionary::Key;
    using Value = typename Dictionary::Value;

    qzTypedDictIter() {}
    explicit qzTypedDictIter(Dictionary& d) : qzDictIter(d) {}
    explicit qzTypedDictIter(Dictionary* d) : qzDictIter(*d) {}
    qzTypedDictIter& operator=(Dictionary& d) {
        qzDictIter::operator=(d);
        return *this;
    }

    qzTypedDictIter& operator++() {
        qzDictIter::operator++();
        return *this;
    }

    const Key* getKey() const { return static_cast<const Key*>(qzDictIter::getKey()); }
    Value* getValue() const { return static_cast<Value*>(qzDictIter::getValue()); }
};

#endif
