#include "util/HashTable.h"

#include <climits>
#include <cstdlib>

namespace {

const int initialBits = 6;
const int initialSize = 1 << initialBits;
const int maxBits = 11;
const int fullChain = 4; // additions per bucket at which the table grows

// Deliberate: with 128 buckets the last shift is 13, not twice 7. mapcar() shows
// the order of the buckets, so the mapping is part of the interface.
// Pinned by HashTable.KeysGoToTheBucketOfTheirHash.
unsigned long bucketIndex(unsigned long key, int bits) {
    const unsigned long k = key & 0xfffff;
    switch (bits) {
    case 6:
        return (k ^ k >> 6 ^ k >> 12) & 63;
    case 7:
        return (k ^ k >> 7 ^ k >> 13) & 127;
    case 8:
        return (k ^ k >> 8 ^ k >> 16) & 255;
    case 9:
        return (k ^ k >> 9) & 511;
    case 10:
        return (k ^ k >> 10) & 1023;
    case 11:
        return (k ^ k >> 11) & 2047;
    default:
        return 0;
    }
}

void pushEntry(HashEntry*& chain, HashEntry* entry) {
    entry->prev = nullptr;
    entry->next = chain;
    if (chain) chain->prev = entry;
    chain = entry;
}

} // namespace

HashTable::HashTable()
    : buckets(new HashEntry*[initialSize]()), count(0), size(initialSize), bits(initialBits) {}

HashTable::~HashTable() {
    mapcar([](HashEntry* entry) { delete entry; });
    delete[] buckets;
}

void HashTable::add(unsigned long key, void* value) {
    if (searchBucketFor(*bucketFor(key), key)) std::abort();
    addElement(key)->value = value;
}

HashEntry* HashTable::addElement(unsigned long key) {
    if (count >= fullChain * size && bits < maxBits) rebuildTable();
    HashEntry* entry = new HashEntry{key, nullptr, nullptr, nullptr};
    pushEntry(*bucketFor(key), entry);
    // Removals do not lower the count, so a long life may take it to the top.
    if (count < INT_MAX) ++count;
    return entry;
}

void* HashTable::lookup(unsigned long key) const {
    const HashEntry* entry = searchBucketFor(*bucketFor(key), key);
    return entry ? entry->value : nullptr;
}

void HashTable::remove(unsigned long key) {
    HashEntry** bucket = bucketFor(key);
    HashEntry* entry = searchBucketFor(*bucket, key);
    if (!entry) return;
    if (entry->next) entry->next->prev = entry->prev;
    if (entry->prev)
        entry->prev->next = entry->next;
    else
        *bucket = entry->next;
    delete entry;
}

HashEntry* HashTable::searchBucketFor(HashEntry* chain, unsigned long key) {
    while (chain && chain->key != key)
        chain = chain->next;
    return chain;
}

void HashTable::mapcar(void (*fn)(HashEntry*)) {
    for (int bucket = 0; bucket < size; ++bucket) {
        HashEntry* entry = buckets[bucket];
        while (entry) {
            HashEntry* next = entry->next;
            fn(entry);
            entry = next;
        }
    }
}

HashEntry** HashTable::bucketFor(unsigned long key) const {
    return buckets + bucketIndex(key, bits);
}

// Doubles the table. Moving the entries turns the order of each chain round.
void HashTable::rebuildTable() {
    HashEntry** oldBuckets = buckets;
    const int oldSize = size;
    size = oldSize * 2;
    buckets = new HashEntry*[size]();
    ++bits;
    for (int bucket = 0; bucket < oldSize; ++bucket) {
        HashEntry* entry = oldBuckets[bucket];
        while (entry) {
            HashEntry* next = entry->next;
            pushEntry(*bucketFor(entry->key), entry);
            entry = next;
        }
    }
    delete[] oldBuckets;
}
