#include "xdr/BinaryTranscriber.h"

#include <new>

#include "util/detail/Chains.h"
#include "util/detail/RawMemory.h"

qzBinaryTranscriber::qzBinaryTranscriber()
    : buffer(space + headerSize), cursor(buffer), capacity(bufferSize), count(0), record{} {}

qzBinaryTranscriber::~qzBinaryTranscriber() = default;

// Blocks

void* qzBinaryTranscriber::Blocks::take() {
    const unsigned chunk = used / perChunk;
    if (chunk == chunks.length()) chunks.append(qzRawAlloc(std::size_t(perChunk) * blockSize));
    return static_cast<char*>(chunks[chunk]) + used++ % perChunk * blockSize;
}

void qzBinaryTranscriber::Blocks::giveBack() {
    --used;
    if (used % perChunk == 0) freeChunksFrom(used / perChunk + 1); // one is kept for the next
}

void qzBinaryTranscriber::Blocks::clear() {
    freeChunksFrom(0);
    used = 0;
}

void qzBinaryTranscriber::Blocks::freeChunksFrom(unsigned n) {
    for (unsigned i = n; i < chunks.length(); ++i)
        qzRawFree(chunks[i]);
    if (n < chunks.length()) chunks.resize(n);
}

// The table

struct qzBinaryTranscriber::Table::Entry {
    Entry(unsigned long key, unsigned long value, qzDictBucket* next)
        : node(reinterpret_cast<char*>(&this->key), next), key(key), value(value) {}
    qzDictBucket node; // first, so that a node is an entry
    unsigned long key;
    unsigned long value;
};

qzBinaryTranscriber::Table::Table() : qzBinaryOTDict(0), entries(sizeof(Entry)) {}

qzBinaryTranscriber::Table::~Table() { numItems = 0; } // the base destroys none of them

unsigned long* qzBinaryTranscriber::Table::lookup(unsigned long key) const {
    const unsigned chain = qzAddressKeys::hash(key) % buckets.length();
    for (qzDictBucket* node = buckets[chain]; node; node = node->next) {
        Entry* const entry = reinterpret_cast<Entry*>(node);
        if (entry->key == key) return &entry->value;
    }
    return nullptr;
}

void qzBinaryTranscriber::Table::set(unsigned long key, unsigned long value) {
    if (unsigned long* known = lookup(key)) {
        *known = value;
    } else {
        add(key, value);
    }
}

unsigned long* qzBinaryTranscriber::Table::add(unsigned long key, unsigned long value) {
    if (numItems >= buckets.length()) relink(4 * buckets.length() + 1);
    qzDictBucket*& head = buckets[qzAddressKeys::hash(key) % buckets.length()];
    Entry* const entry = new (entries.take()) Entry(key, value, head);
    head = &entry->node;
    ++numItems;
    return &entry->value;
}

void qzBinaryTranscriber::Table::relink(unsigned chains) {
    qzDictBuckets filled(chains);
    for (unsigned i = 0; i < buckets.length(); ++i) {
        for (qzDictBucket* node = buckets[i]; node;) {
            qzDictBucket* const next = node->next;
            const unsigned long key = reinterpret_cast<Entry*>(node)->key;
            qzDictBucket*& head = filled[qzAddressKeys::hash(key) % chains];
            node->next = head;
            head = node;
            node = next;
        }
    }
    buckets = filled;
}

// The entries go with their blocks: the nodes, which would free their key, are
// not destroyed.
void qzBinaryTranscriber::Table::clear() {
    if (numItems == 0) return;
    numItems = 0;
    buckets.resize(0);
    buckets.resize(qzDefaultChains);
    entries.clear();
}
