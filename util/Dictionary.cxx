#include "util/Dictionary.h"

#include "util/DictIter.h"
#include "util/detail/Chains.h"
#include "xdr/BinaryReader.h"

qzTypeObj qzDictionary_type("qzDictionary", 1, nullptr, nullptr, qzDictionary::xdr);

qzDictBucket::~qzDictBucket() { qzRawFree(kvmem); }

qzDictionary::qzDictionary(unsigned keySize, unsigned valueSize, unsigned initialBuckets)
    : numItems(0), keySize(keySize), valueSize(valueSize),
      buckets(initialBuckets ? initialBuckets : qzDefaultChains) {}

qzDictionary::qzDictionary(const qzDictionary& other)
    : qzXDRObj(other), numItems(0), keySize(other.keySize), valueSize(other.valueSize),
      buckets(other.buckets.length()) {}

qzDictionary::qzDictionary(qzTypeObj& type)
    : qzXDRObj(type), numItems(0), keySize(0), valueSize(0) {}

qzDictionary::~qzDictionary() = default;

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

// Every lookup comes through here.
qzDictionary::Place qzDictionary::locate(const void* key) const {
    const unsigned chains = buckets.length();
    if (chains == 0) return {0, nullptr, nullptr};
    return Place::find(buckets, hashKey(key) % chains,
                       [this, key](const void* nodeKey) { return compareKeys(key, nodeKey) == 0; });
}

// For an entry that goes in if absent. A dictionary that a reader made and never
// filled has no chains yet.
qzDictionary::Place qzDictionary::locateForAdd(const void* key) {
    if (buckets.length() == 0) buckets.resize(qzDefaultChains);
    return locate(key);
}

char* qzDictionary::newBlock() const {
    return static_cast<char*>(qzRawAlloc(std::size_t(keySize) + valueSize));
}

qzDictBucket* qzDictionary::link(unsigned chain, char* block) {
    ++numItems;
    return buckets[chain] = new qzDictBucket(block, buckets[chain]);
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
    return link(place.chain, block);
}

void* qzDictionary::find(const void* key, void** bucketOut) const {
    qzDictBucket* const node = locate(key).node;
    if (bucketOut) *bucketOut = node;
    return node ? valueOf(node) : nullptr;
}

void* qzDictionary::findCreate(const void* key) {
    const Place place = locateForAdd(key);
    if (place.node) return valueOf(place.node);
    char* block = newBlock();
    copyKey(key, block);
    createValue(block + keySize);
    return valueOf(link(place.chain, block));
}

void qzDictionary::unlink(const Place& place) { qzUnlink(buckets, place); }

// The rest of a removal, once the node hangs nowhere and its key and value are
// destroyed.
void qzDictionary::discard(qzDictBucket* node) {
    invalidateIters(node);
    delete node;
    --numItems;
}

void qzDictionary::remove(const void* key) {
    const Place place = locate(key);
    if (!place.node) return;
    unlink(place);
    destroyKey(place.node->kvmem);
    destroyValue(valueOf(place.node));
    discard(place.node);
}

void* qzDictionary::cut(const void* key) {
    const Place place = locate(key);
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
    bool anyEntry = false;
    unsigned left = numItems; // at most: chains beyond the last entry are not walked
    qzVisitNodes(buckets, [this, &anyEntry, &left](qzDictBucket* node, unsigned chain) {
        destroyKey(node->kvmem);
        destroyValue(valueOf(node));
        delete node;
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
    const std::size_t nbytes = std::size_t(keySize) + valueSize;
    if (nbytes < keySize) return 0;
    char* block = static_cast<char*>(qzRawTryAlloc(nbytes));
    if (!block && nbytes) return 0;
    qzRawZero(block, nbytes);
    if (xdrKey(t, block)) {
        if (xdrValue(t, block + keySize)) {
            unsigned chain;
            if (t.xdr(&chain, 1) && chain < buckets.length()) {
                link(chain, block);
                return 1;
            }
            destroyValue(block + keySize);
        }
        destroyKey(block);
    }
    qzRawFree(block);
    return 0;
}
