// qzSet: the hashed set of fixed-size keys.
//
// The sibling of qzDictionary, without values: separate chaining over a fixed
// number of chains, hooks for what the key's bytes mean, iterators that survive
// the removal of their key. The hooks have byte-wise defaults, so that sets of
// plain keys need none but xdrKey().
//
// Units: sizes are bytes.
// Ownership: as qzDictionary: a derived destructor calls cleanup() first.
// Errors: none are reported; absence is null or false. Reading, doxdr() is
//     false as qzDictionary's is. Copying or assigning a set that holds keys,
//     and adding to a set that is the copy of an empty one (it has no chains),
//     is fatal.
// Cost: as qzDictionary: constant for typed sets, else a walk along one chain.
#ifndef QZ_UTIL_SET_H
#define QZ_UTIL_SET_H

#include "util/ChainPlace.h"
#include "util/KeyKind.h"
#include "util/SetBuckets.h"
#include "util/SetIters.h"

class qzTmpSet;
template <class Heads> class IndexedChains;
class KeyIndex;

class QZ_EXPORT qzSet : public qzXDRObj {
    friend class qzSetIter;

  public:
    // initialBuckets chains, 31 when that is 0.
    qzSet(unsigned keySize, unsigned initialBuckets);
    // Deliberate: the copy has no chains and takes no sizes, so only empty sets
    // can be copied; sets travel by |=. Callers rely on passing empty sets by
    // value. Pinned by qzSet.CopyOfAnEmptySetFindsNothing and
    // qzSetDeathTest.CopyingKeysIsFatal.
    qzSet(const qzSet& other);
    // Empty, for a reader to fill. A derived constructor sets keySize: doxdr()
    // then refuses any other. Left at 0 it is taken from the stream, and the
    // hooks have to expect whatever it says.
    explicit qzSet(qzTypeObj& type);
    // Deliberate: leaves the set without chains, as a copy is. Pinned by
    // qzSet.AssigningAnEmptySetDropsKeysAndChains.
    qzSet& operator=(const qzSet& other);

    // slots 1-6; xdr() hands the set to the transcriber as a base part
    ~qzSet() override;
    unsigned char xdr(qzTranscriber& t) override;
    qzTypeObj& getTypeObj() const override;

  protected:
    // slots 7-11: the hooks
    virtual unsigned hashKey(const void* key) const;             // XOR of the whole 32-bit words
    virtual int compareKeys(const void* a, const void* b) const; // memcmp; 0: equal
    virtual void copyKey(const void* src, void* dst) const;
    virtual void destroyKey(void* key) const;
    // Reading, it constructs into zeroed memory; on failure nothing is left
    // there to destroy.
    virtual unsigned char xdrKey(qzTranscriber& t, void* key) = 0;

  public:
    // Does nothing when an equal key is here.
    void add(const void* key);
    bool contains(const void* key) const { return find(key); }
    // Address of the stored key, or null.
    void* find(const void* key) const;
    void remove(const void* key);

    // Union, intersection and difference into this set; `other` may be itself.
    qzSet& operator|=(const qzSet& other);
    qzSet& operator&=(const qzSet& other);
    qzSet& operator-=(const qzSet& other);
    // Deliberate: not provided. Each prints one line on standard output and
    // aborts; they are declared so that a program that comes to use one fails
    // there and says so. Pinned by qzSetDeathTest.BinaryOperatorsSayTheyAreMissing.
    qzTmpSet operator|(const qzSet& other) const;
    qzTmpSet operator&(const qzSet& other) const;
    qzTmpSet operator-(const qzSet& other) const;

    // Destroys every key and finishes every iterator. Deliberate: the size ends
    // at 0 and the chain heads stay as they were, since this runs on the way to
    // destruction; the set is not to be used again. Pinned by
    // qzSet.CleanupTwiceFreesOnce.
    void cleanup();

    unsigned size() const { return numItems; }
    unsigned getKeySize() const { return keySize; }

    // The iterator registry; iterators call these themselves.
    void addIter(qzSetIter* iter) { iters.append(iter); }
    void removeIter(qzSetIter* iter);
    void invalidateIters(const qzSetBucket* bucket) const;

    // The transcription itself: keys, key size and chains, then key and chain
    // index of every entry.
    unsigned char doxdr(qzTranscriber& t) { return xdrKeys(t, keySize); }
    static unsigned char xdr(void* object, qzTranscriber& t);

  protected:
    using Place = qzChainPlace<qzSetBucket>;
    // What follows takes the kind of keys whose hashKey() and compareKeys() the set
    // has: a large set of such keys gets an index.
    // Every lookup of the base comes through here.
    Place locate(const void* key, qzKeyKind kind = qzKeyKind::other) const;
    // Whether there may be an index; whether one is worth its while though no walk
    // has been long.
    bool mayHaveIndex() const { return numItems > 32; }
    bool isLarge() const { return numItems / 3 > buckets.length() + 16; }
    // For a large set and a key that belongs into this chain; findIndexed() returns
    // the key's block, or null.
    Place locateIndexed(const void* key, unsigned chain, qzKeyKind kind) const;
    char* findIndexed(const void* key, qzKeyKind kind) const;
    // add() and remove() of what was found, or not.
    void addAt(const Place& place, const void* key);
    void removeAt(const Place& place);
    void unite(const qzSet& other, qzKeyKind kind);
    void intersect(const qzSet& other, qzKeyKind otherKind);
    void subtract(const qzSet& other, qzKeyKind kind);

    // doxdr() with the size that a key has in a stream.
    unsigned char xdrKeys(qzTranscriber& t, unsigned streamKeySize);

    qzSetBuckets buckets; // chain heads
    unsigned numItems;
    unsigned keySize;
    qzSetIters iters; // attached iterators, in the order of attaching

  private:
    template <class Visit> static bool visitKeys(const qzSet& set, Visit visit);
    using Chains = IndexedChains<qzSetBuckets>;

    Place walk(const void* key, unsigned chain) const;
    KeyIndex* index() const;
    void* find(const void* key, qzKeyKind kind) const;
    void add(const void* key, qzKeyKind kind);
    void link(const Place& place, char* block);
    void discard(qzSetBucket* node);
    unsigned char writeKeys(qzTranscriber& t, unsigned streamKeySize);
    unsigned char readKeys(qzTranscriber& t, unsigned streamKeySize);
    unsigned char readKey(qzTranscriber& t);
};

static_assert(sizeof(void*) != 4 || sizeof(qzSet) == 64, "derived classes start behind it");

extern QZ_EXPORT qzTypeObj qzSet_type;

#endif
