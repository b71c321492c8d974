// qzDictionary: the hashed map of fixed-size keys to fixed-size values.
//
// Keys and values are raw blocks; what the bytes mean is the business of the
// hooks in slots 8 to 16, which a typed dictionary overrides (see
// util/TypedDictionary.h). Every attached iterator is registered, so removing
// the entry under it moves it on instead of leaving it on freed memory.
//
// Units: sizes are bytes.
// Ownership: the dictionary owns its nodes and their blocks. The base
//     destructor does not visit the entries, as the hooks are gone by then: a
//     derived destructor calls cleanup() first.
// Errors: none are reported; absence is null. Reading, doxdr() is false for
//     sizes other than the class's own, chain indexes outside the chains,
//     counts that memory cannot hold or qzBinaryReader::mayClaim() refuses; what
//     was read until then stays.
// Cost: the number of chains is fixed at construction. Typed dictionaries of texts
//     and words find, add and remove in constant time whatever it is: where chains
//     are long they have an index behind them, made by the first lookup that needs
//     it, which costs about 7 bytes an entry. Other classes, and those that
//     override hashKey() or compareKeys(), walk one chain: give them as many as
//     they hold entries. An entry is one block from malloc. Iteration goes through
//     the chains in order, most recently inserted entry first.
//
// Differs from std::unordered_map: iterators survive the removal of their
// entry, the addresses of keys and values are stable until then, and an
// existing key is kept when its value is replaced.
#ifndef QZ_UTIL_DICTIONARY_H
#define QZ_UTIL_DICTIONARY_H

#include "util/ChainPlace.h"
#include "util/DictBuckets.h"
#include "util/DictIters.h"
#include "util/KeyKind.h"

template <class Heads> class IndexedChains;
class KeyIndex;

class QZ_EXPORT qzDictionary : public qzXDRObj {
    friend class qzDictIter;

  public:
    // initialBuckets chains, 31 when that is 0.
    qzDictionary(unsigned keySize, unsigned valueSize, unsigned initialBuckets);
    // The sizes and chains of the other dictionary without its entries: the
    // hooks that copy them are the derived class's. Its copy constructor goes on
    // with `*this = other`, which reverses the order within each chain.
    qzDictionary(const qzDictionary& other);
    // Empty, for a reader to fill. A derived constructor sets keySize and
    // valueSize: doxdr() then refuses any others. Left at 0 they are taken from
    // the stream, and the hooks have to expect whatever it says.
    explicit qzDictionary(qzTypeObj& type);
    // Deliberate: a merge. Entries already here stay, those of `other` are added
    // or replace the values of their keys, read at this dictionary's key size;
    // callers collect dictionaries of one key type this way. Pinned by
    // qzDictionary.AssignmentMerges.
    qzDictionary& operator=(const qzDictionary& other);

    // slots 1-6; xdr() hands the dictionary to the transcriber as a base part
    ~qzDictionary() override;
    const char* className() const override = 0;
    unsigned char xdr(qzTranscriber& t) override;
    qzTypeObj& getTypeObj() const override;

    // slot 7: inserts the entry, or replaces the value of a key that is here;
    // returns its node.
    virtual qzDictBucket* addInternal(const void* key, const void* value);

  protected:
    // slots 8-16: the hooks. src and dst are one key or value; copies and
    // created values are constructed in raw memory.
    // A body is supplied: XOR of the key's whole 32-bit words, so that keys of
    // less than four bytes all hash to 0.
    virtual unsigned hashKey(const void* key) const = 0;
    virtual int compareKeys(const void* a, const void* b) const = 0; // 0: equal
    virtual void copyKey(const void* src, void* dst) const = 0;
    virtual void destroyKey(void* key) const;
    virtual void copyValue(const void* src, void* dst) const = 0;
    virtual void destroyValue(void* value) const;
    virtual void createValue(void* dst) const = 0;
    // Reading, they construct into zeroed memory; on failure nothing is left
    // there to destroy.
    virtual unsigned char xdrKey(qzTranscriber& t, void* key) = 0;
    virtual unsigned char xdrValue(qzTranscriber& t, void* value) = 0;

  public:
    // Address of the value, or null; *bucketOut receives the node or null.
    void* find(const void* key, void** bucketOut = nullptr) const;
    // The same, creating an absent entry through createValue().
    void* findCreate(const void* key);
    void remove(const void* key);
    // Removes the entry; returns its value's bytes in a block from malloc that
    // the caller owns, null when the key is absent. The value in it is live.
    void* cut(const void* key);
    // Destroys every entry and detaches every iterator. Deliberate: size() and
    // the registry stay as they were, since this runs on the way to destruction;
    // the dictionary is not to be used again. Pinned by
    // qzDictionary.CleanupDetachesIteratorsAndKeepsSize.
    void cleanup();

    unsigned size() const { return numItems; }
    unsigned getKeySize() const { return keySize; }
    unsigned getValueSize() const { return valueSize; }

    // The iterator registry; iterators call these themselves.
    void addIter(qzDictIter* iter) { iters.append(iter); }
    void removeIter(qzDictIter* iter);
    void invalidateIters(const qzDictBucket* bucket) const;

    // The transcription itself: entries, key size, value size and chains, then
    // key, value and chain index of every entry.
    unsigned char doxdr(qzTranscriber& t) { return xdrEntries(t, keySize, valueSize); }
    static unsigned char xdr(void* object, qzTranscriber& t);

  protected:
    using Place = qzChainPlace<qzDictBucket>;
    // Every lookup of the base comes through here.
    Place locate(const void* key) const;
    // Whether there may be an index; whether one is worth its while though no walk
    // has been long.
    bool mayHaveIndex() const { return numItems > 32; }
    bool isLarge() const { return numItems / 3 > buckets.length() + 16; }
    // For a large dictionary, or one with a long chain, whose hashKey() and compareKeys() are those of keys of
    // this kind, and a key that belongs into this chain: through an index that is
    // made where there is none. findIndexed() returns the entry's block, or null.
    Place locateIndexed(const void* key, unsigned chain, qzKeyKind kind) const;
    char* findIndexed(const void* key, qzKeyKind kind) const;
    // The pieces of addInternal(): a new value for a node; a block for a key and
    // a value, and the node in it that hangs it into a chain, or to where the key
    // was looked for.
    qzDictBucket* replaceValue(qzDictBucket* node, const void* value);
    char* newBlock() const;
    qzDictBucket* link(unsigned chain, char* block);
    qzDictBucket* link(const Place& place, char* block);
    // findCreate(), remove() and cut() of what was found, or not.
    void* valueAt(const Place& place, const void* key);
    void removeAt(const Place& place);
    void* cutAt(const Place& place);
    char* valueOf(const qzDictBucket* node) const { return node->kvmem + keySize; }

    // doxdr() with the sizes that a key and a value have in a stream.
    unsigned char xdrEntries(qzTranscriber& t, unsigned streamKeySize, unsigned streamValueSize);

    unsigned numItems;
    unsigned keySize;
    unsigned valueSize;
    qzDictBuckets buckets; // chain heads
    qzDictIters iters;     // attached iterators, in the order of attaching

  private:
    using Chains = IndexedChains<qzDictBuckets>;

    std::size_t entryBytes() const { return std::size_t(keySize) + valueSize; }
    Place walk(const void* key, unsigned chain) const;
    KeyIndex* index() const;
    Place locateForAdd(const void* key);
    qzDictBucket* hang(unsigned chain, char* block);
    void unlink(const Place& place);
    void discard(qzDictBucket* node);
    unsigned char writeEntries(qzTranscriber& t, unsigned streamKeySize, unsigned streamValueSize);
    unsigned char readEntries(qzTranscriber& t, unsigned streamKeySize, unsigned streamValueSize);
    unsigned char readEntry(qzTranscriber& t);
};

static_assert(sizeof(void*) != 4 || sizeof(qzDictionary) == 68, "derived classes start behind it");

extern QZ_EXPORT qzTypeObj qzDictionary_type;

#endif
