#include "util/Set.h"

#include <cstdio>
#include <cstdlib>

#include "util/Fatal.h"
#include "util/SetIter.h"
#include "util/TmpSet.h"
#include "util/detail/IndexedChains.h"
#include "xdr/BinaryReader.h"

qzTypeObj qzSet_type("qzSet", 1, nullptr, nullptr, qzSet::xdr);

qzSetBucket::~qzSetBucket() { release(kvmem); }

qzSet::qzSet(unsigned keySize, unsigned initialBuckets)
    : buckets(initialBuckets ? initialBuckets : qzDefaultChains), numItems(0), keySize(keySize) {}

qzSet::qzSet(const qzSet& other) : qzXDRObj(other), numItems(0), keySize(0) {
    if (other.size()) qzFatal("qzSet: a set that holds keys cannot be copied");
}

qzSet::qzSet(qzTypeObj& type) : qzXDRObj(type), numItems(0), keySize(0) {}

qzSet& qzSet::operator=(const qzSet& other) {
    if (this == &other) return *this;
    if (other.size()) qzFatal("qzSet: a set that holds keys cannot be assigned");
    cleanup();
    buckets.resize(0);
    return *this;
}

qzSet::~qzSet() { qzForgetIndex(this); }

unsigned char qzSet::xdr(qzTranscriber& t) { return t.xdr(qzSet_type, this, this); }

unsigned char qzSet::xdr(void* object, qzTranscriber& t) {
    return static_cast<qzSet*>(object)->xdr(t);
}

qzTypeObj& qzSet::getTypeObj() const { return qzSet_type; }

unsigned qzSet::hashKey(const void* key) const { return qzHashWords(key, keySize); }

int qzSet::compareKeys(const void* a, const void* b) const {
    return keySize ? std::memcmp(a, b, keySize) : 0;
}

void qzSet::copyKey(const void* src, void* dst) const { qzRawMove(dst, src, keySize); }

void qzSet::destroyKey(void*) const {}

KeyIndex* qzSet::index() const {
    return mayHaveIndex() ? Chains::current(this, buckets, numItems) : nullptr;
}

qzSet::Place qzSet::walk(const void* key, unsigned chain) const {
    return Place::find(buckets, chain,
                       [this, key](const void* nodeKey) { return compareKeys(key, nodeKey) == 0; });
}

// Every lookup comes through here, or through the two that follow. An empty set
// is not looked into: it may have no chains, or after cleanup() stale ones.
qzSet::Place qzSet::locate(const void* key, qzKeyKind kind) const {
    const unsigned chains = buckets.length();
    if (chains == 0) return {0, nullptr, nullptr, 0};
    const unsigned chain = hashKey(key) % chains;
    if (numItems == 0) return {chain, nullptr, nullptr, 0};
    if (isLarge()) return locateIndexed(key, chain, kind);
    return walk(key, chain);
}

qzSet::Place qzSet::locateIndexed(const void* key, unsigned chain, qzKeyKind kind) const {
    const KeyIndex* index = Chains::fitting(this, buckets, numItems);
    if (!index) index = Chains(this, buckets, numItems).make(kind, keySize);
    return index ? Chains::find(*index, key, chain) : walk(key, chain);
}

char* qzSet::findIndexed(const void* key, qzKeyKind kind) const {
    const KeyIndex* const index = Chains::fitting(this, buckets, numItems);
    if (index) return index->findBlock(key);
    const qzSetBucket* const node = locateIndexed(key, hashKey(key) % buckets.length(), kind).node;
    return node ? node->kvmem : nullptr;
}

// Every walk over the keys comes through here, for the same reason.
template <class Visit> bool qzSet::visitKeys(const qzSet& set, Visit visit) {
    return set.numItems == 0 || qzVisitNodes(set.buckets, visit);
}

void qzSet::link(const Place& place, char* block) {
    assert(numItems || !buckets[place.chain]); // no use after cleanup()
    const bool had = mayHaveIndex();
    KeyIndex* const known = index();
    qzSetBucket*& head = buckets[place.chain];
    head = qzNewNode(block, keySize, head);
    ++numItems;
    if (!had && mayHaveIndex()) qzForgetIndex(this);
    if (known) Chains::added(*known, head, place.hash);
}

void qzSet::add(const void* key) { add(key, qzKeyKind::other); }

void qzSet::add(const void* key, qzKeyKind kind) { addAt(locate(key, kind), key); }

void qzSet::addAt(const Place& place, const void* key) {
    if (place.node) return;
    if (buckets.length() == 0) qzFatal("qzSet: a set without chains takes no keys");
    char* block = qzNewBlock<qzSetBucket>(keySize);
    copyKey(key, block);
    link(place, block);
}

void* qzSet::find(const void* key) const { return find(key, qzKeyKind::other); }

void* qzSet::find(const void* key, qzKeyKind kind) const {
    const qzSetBucket* node = locate(key, kind).node;
    return node ? node->kvmem : nullptr;
}

// The rest of a removal, once the key is destroyed.
void qzSet::discard(qzSetBucket* node) {
    invalidateIters(node);
    qzFreeNode(node, keySize);
    const bool had = mayHaveIndex();
    --numItems;
    if (had && !mayHaveIndex()) qzForgetIndex(this);
}

void qzSet::removeAt(const Place& place) {
    if (!place.node) return;
    KeyIndex* const known = index();
    if (known) Chains::removing(*known, place);
    qzUnlink(buckets, place);
    destroyKey(place.node->kvmem);
    discard(place.node);
}

void qzSet::remove(const void* key) { removeAt(locate(key, qzKeyKind::other)); }

void qzSet::unite(const qzSet& other, qzKeyKind kind) {
    visitKeys(other, [this, kind](qzSetBucket* node, unsigned) {
        add(node->kvmem, kind);
        return true;
    });
}

void qzSet::intersect(const qzSet& other, qzKeyKind otherKind) {
    for (unsigned chain = 0; numItems && chain < buckets.length(); ++chain) {
        Place place = {chain, buckets[chain], nullptr, 0};
        while (place.node) {
            qzSetBucket* const next = place.node->next;
            if (other.find(place.node->kvmem, otherKind)) {
                place.previous = place.node;
            } else {
                removeAt(place);
            }
            place.node = next;
        }
    }
}

void qzSet::subtract(const qzSet& other, qzKeyKind kind) {
    visitKeys(other, [this, kind](qzSetBucket* node, unsigned) {
        removeAt(locate(node->kvmem, kind));
        return true;
    });
}

qzSet& qzSet::operator|=(const qzSet& other) {
    unite(other, qzKeyKind::other);
    return *this;
}

qzSet& qzSet::operator&=(const qzSet& other) {
    intersect(other, qzKeyKind::other);
    return *this;
}

qzSet& qzSet::operator-=(const qzSet& other) {
    subtract(other, qzKeyKind::other);
    return *this;
}

namespace {

[[noreturn]] void unimplemented(const char* signature) {
    std::printf("Unimplemented operator overloading is called!  %s\n", signature);
    std::fflush(stdout); // abort() does not
    std::abort();
}

} // namespace

qzTmpSet qzSet::operator|(const qzSet&) const {
    unimplemented("qzTmpSet operator|(qzSet const &)");
}

qzTmpSet qzSet::operator&(const qzSet&) const {
    unimplemented("qzTmpSet operator&(qzSet const &)");
}

qzTmpSet qzSet::operator-(const qzSet&) const {
    unimplemented("qzTmpSet operator-(qzSet const &)");
}

// Iterators are told of every removal, so the last one has finished them all.
void qzSet::cleanup() {
    qzForgetIndex(this);
    visitKeys(*this, [this](qzSetBucket* node, unsigned) {
        destroyKey(node->kvmem);
        discard(node);
        return numItems > 0; // chains beyond the last key are not walked
    });
}

void qzSet::removeIter(qzSetIter* iter) {
    const int i = iters.find(iter);
    if (i >= 0) iters.remove(i, 1);
}

void qzSet::invalidateIters(const qzSetBucket* bucket) const { qzInvalidateIters(iters, bucket); }

// Transcription

unsigned char qzSet::xdrKeys(qzTranscriber& t, unsigned streamKeySize) {
    return t.isReading() ? readKeys(t, streamKeySize) : writeKeys(t, streamKeySize);
}

unsigned char qzSet::writeKeys(qzTranscriber& t, unsigned streamKeySize) {
    unsigned chains = buckets.length();
    if (!t.xdr(&numItems, 1)) return 0;
    if (!t.xdr(&streamKeySize, 1)) return 0;
    if (!t.xdr(&chains, 1)) return 0;
    return visitKeys(*this, [this, &t](qzSetBucket* node, unsigned chain) {
        return xdrKey(t, node->kvmem) && t.xdr(&chain, 1);
    });
}

// A class that has not said what its key size is (it is 0) takes the stream's.
// A key size of 0 without keys or chains is what the copy of an empty set
// writes; it comes back as a set that can be added to.
unsigned char qzSet::readKeys(qzTranscriber& t, unsigned streamKeySize) {
    unsigned keys, readKeySize, chains;
    if (!t.xdr(&keys, 1)) return 0;
    if (!t.xdr(&readKeySize, 1)) return 0;
    if (!t.xdr(&chains, 1)) return 0;
    const bool anySize = streamKeySize == 0;
    if (!anySize && readKeySize != streamKeySize && (readKeySize || keys)) return 0;
    cleanup(); // a set that is read into again
    buckets.resize(0);
    if (anySize) keySize = readKeySize;
    if (chains == 0 && keys == 0) chains = qzDefaultChains;
    if (!qzBinaryReader::mayClaim(t, std::size_t(chains) * sizeof(void*))) return 0;
    if (!buckets.tryReplace(chains)) return 0;
    for (unsigned i = 0; i < keys; ++i) {
        if (!readKey(t)) return 0;
    }
    return 1;
}

unsigned char qzSet::readKey(qzTranscriber& t) {
    char* block = qzTryNewBlock<qzSetBucket>(keySize);
    if (!block && keySize) return 0;
    qzRawZero(block, keySize);
    if (xdrKey(t, block)) {
        unsigned chain;
        if (t.xdr(&chain, 1) && chain < buckets.length()) {
            link({chain, nullptr, nullptr, 0}, block);
            return 1;
        }
        destroyKey(block);
    }
    qzRawFree(block);
    return 0;
}

// qzTmpSet

qzTmpSet::~qzTmpSet() { cleanup(); }

unsigned char qzTmpSet::xdrKey(qzTranscriber&, void*) { return 0; }
