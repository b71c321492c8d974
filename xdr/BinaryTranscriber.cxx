#include "xdr/BinaryTranscriber.h"

qzBinaryTranscriber::qzBinaryTranscriber()
    : cursor(buffer), capacity(bufferSize), count(0), record{} {}

qzBinaryTranscriber::~qzBinaryTranscriber() = default;

unsigned long* qzBinaryTranscriber::Table::lookup(unsigned long key) const {
    const unsigned chain = qzAddressKeys::hash(key) % buckets.length();
    for (qzDictBucket* node = buckets[chain]; node; node = node->next) {
        if (*reinterpret_cast<unsigned long*>(node->kvmem) == key) {
            return reinterpret_cast<unsigned long*>(valueOf(node));
        }
    }
    return nullptr;
}

void qzBinaryTranscriber::Table::set(unsigned long key, unsigned long value) {
    if (unsigned long* known = lookup(key)) {
        *known = value;
        return;
    }
    if (numItems >= 2 * buckets.length()) relink(4 * buckets.length() + 1);
    char* block = newBlock();
    reinterpret_cast<unsigned long*>(block)[0] = key;
    reinterpret_cast<unsigned long*>(block)[1] = value;
    link(qzAddressKeys::hash(key) % buckets.length(), block);
}

void qzBinaryTranscriber::Table::relink(unsigned chains) {
    qzDictBuckets filled(chains);
    for (unsigned i = 0; i < buckets.length(); ++i) {
        for (qzDictBucket* node = buckets[i]; node;) {
            qzDictBucket* const next = node->next;
            qzDictBucket*& head =
                filled[qzAddressKeys::hash(*reinterpret_cast<unsigned long*>(node->kvmem)) %
                       chains];
            node->next = head;
            head = node;
            node = next;
        }
    }
    buckets = filled;
}

void qzBinaryTranscriber::Table::clear() {
    const unsigned defaultChains = 31;
    cleanup();
    numItems = 0;
    buckets.resize(defaultChains);
}
