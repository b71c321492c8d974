#include "tools/qzwatch/Counter.h"

#include "event/DataTypes.h"
#include "xdr/Transcriber.h"

namespace qzwatch {

qzTypeObj Counter_type("Counter", 1, Counter::newInstance, Counter::deleteInstance, Counter::xdr);
Counter* Counter::lastRead = nullptr;

namespace {

// FNV-1a
unsigned addToHash(unsigned hash, const void* data, unsigned n) {
    const auto* const bytes = static_cast<const unsigned char*>(data);
    for (unsigned i = 0; i < n; ++i)
        hash = (hash ^ bytes[i]) * 16777619u;
    return hash;
}

const unsigned emptyHash = 2166136261u;

bool isCount(double n) { return n >= 0 && n < 1e18; }

} // namespace

unsigned WholeText::hash(const qzStr& key) { return addToHash(emptyHash, key.data, key.length()); }

KeyCounts::~KeyCounts() = default;

Counter::Counter(const qzStr& name) : name(name), keys(new KeyCounts(chains)) { addInputs(); }

Counter::Counter(qzTypeObj& type) : qzObj(type), keys(new KeyCounts(chains)) { addInputs(); }

Counter::~Counter() = default;

void Counter::addInputs() {
    addInput("matches", qzDT_int, this, reinterpret_cast<void (*)()>(addMatches), 0);
    addInput("keys", qzDT_qzStr, this, reinterpret_cast<void (*)()>(addKeys), 0);
}

void Counter::addKeys(Counter* counter, qzStr found) {
    const char* const end = found.data + found.length();
    for (const char* key = found.data; key < end; key += std::strlen(key) + 1)
        counter->add(key, 1);
}

// A dictionary keeps the number of chains that it was made with. One with as many
// keys as chains goes over, by a merge, into one with more.
void Counter::add(const qzStr& key, double n) {
    (*keys)[key] += n;
    if (keys->size() <= chains) return;
    chains *= 4;
    std::unique_ptr<KeyCounts> larger(new KeyCounts(chains));
    *larger = *keys;
    keys = std::move(larger);
}

// Transcription

unsigned char Counter::xdr(qzTranscriber& t) {
    return t.xdr(&followingPacked, 1) && t.xdr(&sumPacked, 1) && t.xdr(&name, 1) &&
           t.xdr(&lines, 1) && keysPacked.xdr(t) && countsPacked.xdr(t);
}

qzTypeObj& Counter::getTypeObj() const { return Counter_type; }

void* Counter::newInstance(qzTypeObj& type) { return lastRead = new Counter(type); }

void Counter::deleteInstance(void* object) { delete static_cast<Counter*>(object); }

unsigned char Counter::xdr(void* object, qzTranscriber& t) {
    return static_cast<Counter*>(object)->xdr(t);
}

void Counter::pack(int following) {
    for (KeyCountsIter i(*keys); i.notDone(); ++i) {
        keysPacked.append(*i.getKey());
        countsPacked.append(*i.getValue());
    }
    followingPacked = following;
    sumPacked = sum();
}

bool Counter::unpack() {
    const unsigned n = keysPacked.length();
    if (countsPacked.elementSize() != sizeof(double) || countsPacked.length() != n) return false;
    if (sumPacked != sum() || !isCount(lines)) return false;
    for (unsigned i = 0; i < n; ++i) {
        if (!isCount(countsPacked[i])) return false;
        add(keysPacked[i], countsPacked[i]);
    }
    keysPacked = qzStrArray();
    countsPacked = qzDoubleArray();
    return true;
}

// Of everything that is packed.
int Counter::sum() const {
    unsigned hash = addToHash(emptyHash, &followingPacked, sizeof followingPacked);
    hash = addToHash(hash, name.data, name.slength);
    hash = addToHash(hash, &lines, sizeof lines);
    for (unsigned i = 0; i < keysPacked.length(); ++i) {
        hash = addToHash(hash, keysPacked[i].data, keysPacked[i].slength);
        hash = addToHash(hash, &countsPacked[i], sizeof(double));
    }
    return static_cast<int>(hash & 0x7FFFFFFF);
}

} // namespace qzwatch
