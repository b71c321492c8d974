// qzTypedDictionary: the pattern of the typed dictionaries.
//
// A member of the family fixes key and value types and has no fields of its
// own; keys and values are constructed in place in the base's blocks.
//
//     class qzVoidPtrDict : public qzTypedDictionary<qzVoidPtrDict, qzStrKeys, void*>
//
// Derived is the member itself. Keys names the key type and tells how to hash
// and compare it; see util/StrKeys.h.
//
// Ownership: values that are pointers are not owned.
// Cost, errors and order are qzDictionary's.
#ifndef QZ_UTIL_TYPEDDICTIONARY_H
#define QZ_UTIL_TYPEDDICTIONARY_H

#include <typeinfo>

#include "util/DictIter.h"
#include "util/Dictionary.h"
#include "util/TypedEntry.h"
#include "xdr/StreamSize.h"

template <class Derived, class Keys, class V> class QZ_EXPORT qzTypedDictionary
    : public qzDictionary {
  public:
    using Key = typename Keys::Key;
    using Value = V;

    // initialBuckets chains, 31 when that is 0.
    explicit qzTypedDictionary(unsigned initialBuckets = 0)
        : qzDictionary(sizeof(Key), sizeof(Value), initialBuckets) {}
    // Has the source's chains, each in reverse order.
    qzTypedDictionary(const qzTypedDictionary& other) : qzDictionary(other) {
        qzDictionary::operator=(other);
    }
    explicit qzTypedDictionary(qzTypeObj& type) : qzDictionary(type) {
        keySize = sizeof(Key);
        valueSize = sizeof(Value);
    }
    ~qzTypedDictionary() override { cleanup(); }

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
        const qzDictBucket* node = place(key).node;
        return node ? valueAt(node) : nullptr;
    }
    // The value; an absent key is inserted with an empty one (null, 0).
    Value& operator[](const Key& key) {
        const qzDictBucket* node = place(key).node;
        return node ? *valueAt(node) : *static_cast<Value*>(findCreate(&key));
    }
    // Removes the entry; returns a block from malloc that holds its live value,
    // to be destroyed and freed by the caller, or null. The key is taken by
    // value: it may be the dictionary's own.
    Value* cut(Key key) { return static_cast<Value*>(qzDictionary::cut(&key)); }
    void remove(Key key) { qzDictionary::remove(&key); }

    unsigned char doxdr(qzTranscriber& t) {
        return xdrEntries(t, qzStreamSize<Key>(), qzStreamSize<Value>());
    }

  protected:
    // slots 8-16
    unsigned hashKey(const void* key) const override {
        return Keys::hash(qzTypedEntry<Key>::at(key));
    }
    int compareKeys(const void* a, const void* b) const override {
        return Keys::compare(qzTypedEntry<Key>::at(a), qzTypedEntry<Key>::at(b));
    }
    void copyKey(const void* src, void* dst) const override { qzTypedEntry<Key>::copy(src, dst); }
    void destroyKey(void* key) const override { qzTypedEntry<Key>::destroy(key); }
    void copyValue(const void* src, void* dst) const override {
        qzTypedEntry<Value>::copy(src, dst);
    }
    void destroyValue(void* value) const override { qzTypedEntry<Value>::destroy(value); }
    void createValue(void* dst) const override { qzTypedEntry<Value>::create(dst); }
    unsigned char xdrKey(qzTranscriber& t, void* key) override {
        return qzTypedEntry<Key>::xdr(t, key);
    }
    unsigned char xdrValue(qzTranscriber& t, void* value) override {
        return qzTypedEntry<Value>::xdr(t, value);
    }

  private:
    // A class derived from the member may have other hooks; without one the
    // compiler knows them, and lookups need not call them.
    bool hooksAreOurs() const { return typeid(*this) == typeid(Derived); }
    Place place(const Key& key) const {
        const unsigned chains = buckets.length();
        if (!hooksAreOurs() || chains == 0) return locate(&key);
        return Place::find(buckets, Keys::hash(key) % chains, [&key](const void* nodeKey) {
            return Keys::compare(key, qzTypedEntry<Key>::at(nodeKey)) == 0;
        });
    }
    static Value* valueAt(const qzDictBucket* node) {
        return reinterpret_cast<Value*>(node->kvmem + sizeof(Key));
    }
};

template <class Derived, class Keys, class V>
qzDictBucket* qzTypedDictionary<Derived, Keys, V>::addInternal(const void* key, const void* value) {
    if (!hooksAreOurs() || buckets.length() == 0) return qzDictionary::addInternal(key, value);
    const Place at = place(qzTypedEntry<Key>::at(key));
    if (at.node) return replaceValue(at.node, value);
    char* block = newBlock();
    qzTypedEntry<Key>::copy(key, block);
    qzTypedEntry<Value>::copy(value, block + sizeof(Key));
    return link(at.chain, block);
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
