// HashTable: a map from unsigned long keys to untyped values.
//
// The table starts with 64 buckets and doubles up to 2048, each time there have
// been four additions per bucket; from there on the chains grow.
//
// Ownership: the table owns its entries, never the values.
// Errors: add() of a key that is present aborts, without a message.
// Cost: one chain per operation, about four entries long while the table has
// seen no more than 8192 additions. The hash looks at the low 20 bits of the
// key: keys that differ only above them share a chain.
#ifndef QZ_UTIL_HASHTABLE_H
#define QZ_UTIL_HASHTABLE_H

#include "util/Export.h"

// Public for reading; change the value only.
struct QZ_EXPORT HashEntry {
    unsigned long key;
    void* value;
    HashEntry* next;
    HashEntry* prev;
};

class QZ_EXPORT HashTable {
  public:
    HashTable();
    HashTable(const HashTable&) = delete;
    HashTable& operator=(const HashTable&) = delete;
    ~HashTable();

    void add(unsigned long key, void* value);
    // A new entry at the head of its chain, its value null. Does not look
    // whether the key is there already; the newer entry of two hides the older
    // one only until the table grows.
    HashEntry* addElement(unsigned long key);
    // Null when the key is absent, so a stored null cannot be told from that.
    void* lookup(unsigned long key) const;
    void remove(unsigned long key);

    // The first entry of the chain with that key, or null.
    static HashEntry* searchBucketFor(HashEntry* chain, unsigned long key);

    // Calls fn for every entry, buckets in order, each chain from its head. fn
    // may remove the entry it is given, and make no other addition or removal.
    void mapcar(void (*fn)(HashEntry*));

    // Public for reading; change them only through the operations.
    HashEntry** buckets;
    // Deliberate: the additions ever made, which remove() does not take back.
    // A table that has once been busy gets, and keeps, the room for it.
    // Pinned by HashTable.RemovalDoesNotLowerTheCount.
    int count;
    int size; // number of buckets, a power of two
    int bits; // log2 of size

  private:
    HashEntry** bucketFor(unsigned long key) const;
    void rebuildTable();
};

#endif
