#include "util/Dictionary.h"

#include "util/DictIter.h"
#include "util/detail/IndexedChains.h"
#include "xdr/BinaryReader.h"

qzTypeObj qzDictionary_type("qzDictionary", 1, nullptr, nullptr, qzDictionary::xdr);

qzDictBucket::~qzDictBucket() { release(kvmem); }

qzDictionary::qzDictionary(unsigned keySize, unsigned valueSize, unsigned initialBuckets)
    : numItems(0), keySize(keySize), valueSize(valueSize),
      buckets(initialBuckets ? initialBuckets : qzDefaultChains) {}

qzDictionary::qzDictionary(const qzDictionary& other)
    : qzXDRObj(other), numItems(0), keySize(other.keySize), valueSize(other.valueSize),
      buckets(other.buckets.length()) {}

qzDictionary::qzDictionary(qzTypeObj& type)
    : qzXDRObj(type), numItems(0), keySize(0), valueSize(0) {}

qzDictionary::~qzDictionary() { qzForgetIndex(this); }

// The value's address goes by this dictionary's key size: both have keys of one
// type.
qzDictionary& qzDictionary::operator=(const qzDictionary& other) {
    if (this == &other) return *this;
    qzVisitNodes(other.buckets, [this](qzDictBucket* node, unsigned) {
        addInternal(node->kvmem, valueOf(node));
        return true;
    });
    return *this;
}

unsigned char qzDictionary::xdr(qzTranscriber& t) { return t.xdr(qzDictionary_type, this, this); }

unsigned char qzDictionary::xdr(void* object, qzTranscriber& t) {
    return static_cast<qzDictionary*>(object)->xdr(t);
}

qzTypeObj& qzDictionary::getTypeObj() const { return qzDictionary_type; }

unsigned qzDictionary::hashKey(const void* key) const { return qzHashWords(key, keySize); }

void qzDictionary::destroyKey(void*) const {}

void qzDictionary::destroyValue(void*) const {}

KeyIndex* qzDictionary::index() const {
    return mayHaveIndex() ? Chains::current(this, buckets, numItems) : nullptr;
}

qzDictionary::Place qzDictionary::walk(const void* key, unsigned chain) const {
    return Place::find(buckets, chain,
                       [this, key](const void* nodeKey) { return compareKeys(key, nodeKey) == 0; });
}

// Every lookup comes through here, or through the two that follow. An index is
// not made here, where nothing is known of the keys, but used.
qzDictionary::Place qzDictionary::locate(const void* key) const {
    const unsigned chains = buckets.length();
    if (chains == 0) return {0, nullptr, nullptr, 0};
    const unsigned chain = hashKey(key) % chains;
    const KeyIndex* const known = index();
    return known ? Chains::find(*known, key, chain) : walk(key, chain);
}

qzDictionary::Place qzDictionary::locateIndexed(const void* key, unsigned chain,
                                                qzKeyKind kind) const {
    const KeyIndex* index = Chains::fitting(this, buckets, numItems);
    if (!index) index = Chains(this, buckets, numItems).make(kind, entryBytes());
    return index ? Chains::find(*index, key, chain) : walk(key, chain);
}

char* qzDictionary::findIndexed(const void* key, qzKeyKind kind) const {
    const KeyIndex* const index = Chains::fitting(this, buckets, numItems);
    if (index) return index->findBlock(key);
    const qzDictBucket* const node = locateIndexed(key, hashKey(key) % buckets.length(), kind).node;
    return node ? node->kvmem : nullptr;
}

// For an entry that goes in if absent. A dictionary that a reader made and never
// filled has no chains yet.
qzDictionary::Place qzDictionary::locateForAdd(const void* key) {
    if (buckets.length() == 0) buckets.resize(qzDefaultChains);
    return locate(key);
}

char* qzDictionary::newBlock() const { return qzNewBlock<qzDictBucket>(entryBytes()); }

qzDictBucket* qzDictionary::hang(unsigned chain, char* block) {
    const bool had = mayHaveIndex();
    ++numItems;
    if (!had && mayHaveIndex()) qzForgetIndex(this);
    return buckets[chain] = qzNewNode(block, entryBytes(), buckets[chain]);
}

// Nothing is known of the block: the next lookup makes the index anew.
qzDictBucket* qzDictionary::link(unsigned chain, char* block) {
    if (mayHaveIndex()) qzForgetIndex(this);
    return hang(chain, block);
}

qzDictBucket* qzDictionary::link(const Place& place, char* block) {
    KeyIndex* const known = index();
    qzDictBucket* const node = hang(place.chain, block);
    if (known) Chains::added(*known, node, place.hash);
    return node;
}

qzDictBucket* qzDictionary::replaceValue(qzDictBucket* node, const void* value) {
    void* stored = valueOf(node);
    if (stored == value) return node; // destroyed first, it could not be copied
    destroyValue(stored);
    copyValue(value, stored);
    return node;
}

qzDictBucket* qzDictionary::addInternal(const void* key, const void* value) {
    const Place place = locateForAdd(key);
    if (place.node) return replaceValue(place.node, value);
    char* block = newBlock();
    copyKey(key, block);
    copyValue(value, block + keySize);
    return link(place, block);
}

void* qzDictionary::find(const void* key, void** bucketOut) const {
    qzDictBucket* const node = locate(key).node;
    if (bucketOut) *bucketOut = node;
    return node ? valueOf(node) : nullptr;
}

void* qzDictionary::findCreate(const void* key) { return valueAt(locateForAdd(key), key); }

void* qzDictionary::valueAt(const Place& place, const void* key) {
    if (place.node) return valueOf(place.node);
    char* block = newBlock();
    copyKey(key, block);
    createValue(block + keySize);
    return valueOf(link(place, block));
}

void qzDictionary::unlink(const Place& place) {
    KeyIndex* const known = index();
    if (known) Chains::removing(*known, place);
    qzUnlink(buckets, place);
}

// The rest of a removal, once the node hangs nowhere and its key and value are
// destroyed.
void qzDictionary::discard(qzDictBucket* node) {
    invalidateIters(node);
    qzFreeNode(node, entryBytes());
    const bool had = mayHaveIndex();
    --numItems;
    if (had && !mayHaveIndex()) qzForgetIndex(this);
}

void qzDictionary::remove(const void* key) { removeAt(locate(key)); }

void qzDictionary::removeAt(const Place& place) {
    if (!place.node) return;
    unlink(place);
    destroyKey(place.node->kvmem);
    destroyValue(valueOf(place.node));
    discard(place.node);
}

void* qzDictionary::cut(const void* key) { return cutAt(locate(key)); }

void* qzDictionary::cutAt(const Place& place) {
    if (!place.node) return nullptr;
    unlink(place);
    void* value = qzRawAlloc(valueSize);
    qzRawMove(value, valueOf(place.node), valueSize);
    destroyKey(place.node->kvmem);
    discard(place.node);
    return value;
}

void qzDictionary::cleanup() {
    if (numItems == 0) return;
    qzForgetIndex(this);
    bool anyEntry = false;
    unsigned left = numItems; // at most: chains beyond the last entry are not walked
    qzVisitNodes(buckets, [this, &anyEntry, &left](qzDictBucket* node, unsigned chain) {
        destroyKey(node->kvmem);
        destroyValue(valueOf(node));
        qzFreeNode(node, entryBytes());
        buckets[chain] = nullptr; // the walk has the rest of the chain in hand
        anyEntry = true;
        return --left > 0;
    });
    // An attached iterator stands on an entry. Without one this is the second
    // time, and the iterators in the registry are somebody else's by now.
    if (!anyEntry) return;
    for (unsigned i = 0; i < iters.length(); ++i) {
        qzDictIter* iter = iters[i];
        iter->dict = nullptr;
        iter->node = nullptr;
        iter->flags |= qzDictIter::removedBit;
    }
}

void qzDictionary::removeIter(qzDictIter* iter) {
    const int i = iters.find(iter);
    if (i >= 0) iters.remove(i, 1);
}

void qzDictionary::invalidateIters(const qzDictBucket* bucket) const {
    qzInvalidateIters(iters, bucket);
}

// Transcription

unsigned char qzDictionary::xdrEntries(qzTranscriber& t, unsigned streamKeySize,
                                       unsigned streamValueSize) {
    return t.isReading() ? readEntries(t, streamKeySize, streamValueSize)
                         : writeEntries(t, streamKeySize, streamValueSize);
}

unsigned char qzDictionary::writeEntries(qzTranscriber& t, unsigned streamKeySize,
                                         unsigned streamValueSize) {
    unsigned chains = buckets.length();
    if (!t.xdr(&numItems, 1)) return 0;
    if (!t.xdr(&streamKeySize, 1)) return 0;
    if (!t.xdr(&streamValueSize, 1)) return 0;
    if (!t.xdr(&chains, 1)) return 0;
    if (numItems == 0) return 1;
    return qzVisitNodes(buckets, [this, &t](qzDictBucket* node, unsigned chain) {
        return xdrKey(t, node->kvmem) && xdrValue(t, valueOf(node)) && t.xdr(&chain, 1);
    });
}

// A class that has not said what its sizes are (they are 0) takes the stream's.
unsigned char qzDictionary::readEntries(qzTranscriber& t, unsigned streamKeySize,
                                        unsigned streamValueSize) {
    unsigned entries, readKeySize, readValueSize, chains;
    if (!t.xdr(&entries, 1)) return 0;
    if (!t.xdr(&readKeySize, 1)) return 0;
    if (!t.xdr(&readValueSize, 1)) return 0;
    if (!t.xdr(&chains, 1)) return 0;
    const bool anySize = streamKeySize == 0 && streamValueSize == 0;
    if (!anySize && (readKeySize != streamKeySize || readValueSize != streamValueSize)) return 0;
    cleanup(); // a dictionary that is read into again
    numItems = 0;
    iters.resize(0);
    if (anySize) {
        keySize = readKeySize;
        valueSize = readValueSize;
    }
    if (!qzBinaryReader::mayClaim(t, std::size_t(chains) * sizeof(void*))) return 0;
    if (!buckets.tryReplace(chains)) return 0;
    for (unsigned i = 0; i < entries; ++i) {
        if (!readEntry(t)) return 0;
    }
    return 1;
}

unsigned char qzDictionary::readEntry(qzTranscriber& t) {
    const std::size_t nbytes = entryBytes();
    if (nbytes < keySize) return 0;
    char* block = qzTryNewBlock<qzDictBucket>(nbytes);
    if (!block && nbytes) return 0;
    qzRawZero(block, nbytes);
    if (xdrKey(t, block)) {
        if (xdrValue(t, block + keySize)) {
            unsigned chain;
            if (t.xdr(&chain, 1) && chain < buckets.length()) {
                hang(chain, block);
                return 1;
            }
            destroyValue(block + keySize);
        }
        destroyKey(block);
    }
    qzRawFree(block);
    return 0;
}
