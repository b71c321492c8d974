#include "util/Dictionary.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <type_traits>
#include <utility>

#include "support/CountingEntry.h"
#include "util/DictIter.h"

namespace {

class ProbeDict : public qzDictionary {
  public:
    ProbeDict(unsigned keySize, unsigned valueSize, unsigned chains)
        : qzDictionary(keySize, valueSize, chains), comparedBytes(keySize) {}
    ProbeDict(const ProbeDict& other) : qzDictionary(other), comparedBytes(keySize) {
        *this = other;
    }
    ProbeDict& operator=(const ProbeDict& other) {
        EXPECT_EQ(&qzDictionary::operator=(other), this);
        return *this;
    }
    ~ProbeDict() override { cleanup(); }

    using qzDictionary::buckets;
    using qzDictionary::iters;

    const char* className() const override { return "PROBE"; }
    unsigned hashKey(const void* key) const override { return qzDictionary::hashKey(key); }
    int compareKeys(const void* searched, const void* stored) const override {
        EXPECT_TRUE(live.count(stored));
        return std::memcmp(searched, stored, comparedBytes);
    }
    void copyKey(const void* src, void* dst) const override { make('k', dst, src, keySize); }
    void destroyKey(void* key) const override { unmake('K', key); }
    void copyValue(const void* src, void* dst) const override { make('v', dst, src, valueSize); }
    void destroyValue(void* value) const override { unmake('V', value); }
    void createValue(void* dst) const override { make('c', dst, "new!", 4); }
    unsigned char xdrKey(qzTranscriber&, void*) override { return 0; }
    unsigned char xdrValue(qzTranscriber&, void*) override { return 0; }

    unsigned entrySize() const { return keySize + valueSize; }
    void put(char key, char value) { addInternal(fourBytes(key).data(), fourBytes(value).data()); }
    void drop(char key) { remove(fourBytes(key).data()); }
    std::string hooksSince() const { return std::exchange(trace, ""); }

    mutable LiveAddresses live;
    unsigned comparedBytes;

  private:
    void make(char hook, void* dst, const void* src, unsigned nbytes) const {
        trace += hook;
        live.construct(dst);
        std::memcpy(dst, src, nbytes);
    }
    void unmake(char hook, void* at) const {
        trace += hook;
        live.destroy(at);
    }

    mutable std::string trace;
};

static_assert(!std::is_polymorphic_v<qzDictIter>);
static_assert(sizeof(qzDictBucket) == 2 * sizeof(void*), "two pointers a node");

void runProgram(unsigned keySize, unsigned chains) {
    std::mt19937 random(2301 + keySize);
    Modelled<ProbeDict, qzDictIter> both(chains, keySize, 4u);
    ProbeDict& dict = both.probe;
    ChainModel& model = both.model;
    for (int step = 0; step < 6000; ++step) {
        const std::string key = randomKey(random, keySize);
        const std::string value = std::to_string(1000 + random() % 9000);
        const auto* expected = model.find(key);
        void* bucket = &random;
        void* const found = dict.find(key.data(), &bucket);
        const auto* node = static_cast<qzDictBucket*>(bucket);
        ASSERT_EQ(!node, !expected);
        ASSERT_EQ(found, node ? node->kvmem + keySize : nullptr);
        const char* const anyKey = node && step % 2 ? node->kvmem : key.data();
        switch (random() % 10) {
        case 0:
            ASSERT_EQ(std::string(static_cast<char*>(dict.findCreate(anyKey)), 4),
                      expected ? expected->value : "new!");
            if (!expected) model.add(key, "new!");
            break;
        case 1: {
            void* const cut = dict.cut(anyKey);
            ASSERT_EQ(!cut, !expected);
            if (cut) {
                EXPECT_EQ(std::string(static_cast<char*>(cut), 4), expected->value);
                dict.live.destroy(found); // it lives in the block now
            }
            std::free(cut);
            model.remove(key);
            break;
        }
        case 2:
        case 3:
        case 4:
            if (step / 150 % 2) { // fills up, then runs empty
                dict.remove(anyKey);
                model.remove(key);
            } else {
                const qzDictBucket* added = dict.addInternal(anyKey, value.data());
                model.add(key, value);
                ASSERT_EQ(std::string(added->kvmem, keySize + 4), key + value);
            }
            break;
        default:
            both.moveSomeIterator(random);
        }
        for (const auto& i : both.iters)
            ASSERT_EQ(i->getValue(), i->getKey() ? i->node->kvmem + keySize : nullptr);
        ASSERT_EQ(dict.live.size(), 2 * dict.size());
        ASSERT_NO_FATAL_FAILURE(both.expectSame()) << "step " << step;
    }

    ChainModel reversed(chains);
    for (const auto& entry : model.entries())
        reversed.add(entry.key, entry.value);
    const ProbeDict copy(dict);
    EXPECT_EQ(picture(copy), picture(reversed));
    EXPECT_EQ(copy.iters.length(), 0u);
}

TEST(qzDictionary, AgreesWithAModelOfItsChainsAndIterators) {
    const struct { unsigned keySize, chains; } rows[] = {{6, 5}, {4, 0}, {9, 1}, {1, 3}, {3, 2}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.keySize << " bytes, " << row.chains << " chains");
        ASSERT_NO_FATAL_FAILURE(runProgram(row.keySize, row.chains));
    }
}

TEST(qzDictionary, HashTakesWholeWordsAtAnyAddressAndNoTail) {
    const struct {
        unsigned keySize, hash;
    } rows[] = {{3, 0}, {4, 0xf4030201}, {7, 0xf4030201}, {8, 0x0c040404}, {11, 0x0c040404}};
    const char key[] = "?\x01\x02\x03\xf4\x05\x06\x07\xf8\xff\xff\xff";
    for (const auto& row : rows)
        EXPECT_EQ(ProbeDict(row.keySize, 4, 0).hashKey(key + 1), row.hash) << row.keySize;
}

TEST(qzDictionary, HooksRunInTheOrderOfEachOperation) {
    ProbeDict dict(4, 4, 1);
    dict.comparedBytes = 1;
    const qzDictBucket* const node = dict.addInternal("akey", "old!");
    EXPECT_EQ(dict.hooksSince(), "kv");
    EXPECT_EQ(dict.addInternal("aKEY", "now!"), node); // the first key stays
    EXPECT_EQ(picture(dict), "akeynow! |");
    EXPECT_EQ(dict.hooksSince(), "Vv");
    dict.findCreate("bkey");
    EXPECT_EQ(dict.hooksSince(), "kc");
    dict.findCreate("bkey");
    dict.drop('z');
    EXPECT_EQ(dict.cut("zkey"), nullptr);
    EXPECT_EQ(dict.hooksSince(), "");
    dict.drop('a');
    EXPECT_EQ(dict.hooksSince(), "KV");
    dict.live.destroy(dict.find("bkey"));
    std::free(dict.cut("bkey"));
    EXPECT_EQ(dict.hooksSince(), "K");
}

TEST(qzDictionary, AssignmentMerges) {
    ProbeDict target(4, 4, 1), source(4, 4, 1);
    target.put('a', '1');
    target.put('b', '2');
    source.put('b', '7');
    source.put('c', '8');
    target.hooksSince();
    target = source;
    EXPECT_EQ(picture(target), "c...8... b...7... a...1... |");
    EXPECT_EQ(target.hooksSince(), "kvVv");
    EXPECT_EQ(target.size(), 3u);
    const ProbeDict& itself = target;
    target = itself;
    EXPECT_EQ(target.hooksSince(), "");

    ProbeDict wide(8, 4, 1); // values are taken from where the target has them
    wide.addInternal("a...five", "nine");
    target = wide;
    EXPECT_EQ(picture(target), "c...8... b...7... a...five |");
}

TEST(qzDictionary, CleanupDetachesIteratorsAndKeepsSize) {
    ProbeDict dict(4, 4, 2);
    dict.put('a', '1');
    dict.put('b', '2');
    qzDictIter first(dict), second(dict);
    ++second;
    first.flags |= 0x40;
    dict.cleanup();
    EXPECT_TRUE(dict.live.empty());
    EXPECT_EQ(dict.size(), 2u);
    EXPECT_EQ(dict.iters.length(), 2u);
    EXPECT_EQ(picture(dict), "||");
    EXPECT_EQ(first.flags, 0x41);
    for (qzDictIter* iter : {&first, &second}) {
        EXPECT_FALSE(iter->attached());
        EXPECT_FALSE((++*iter).notDone());
        EXPECT_TRUE(iter->removed());
    }
}

TEST(qzDictIter, ReattachedIteratorBelongsToItsNewDictionaryOnly) {
    auto old = std::make_unique<ProbeDict>(4, 4, 1);
    ProbeDict other(4, 4, 1);
    old->put('a', '1');
    other.put('b', '2');
    qzDictIter iter(*old);
    iter.flags |= 0x80;
    old->drop('a'); // finished
    EXPECT_EQ(iter.flags, 0x81);
    iter = other;
    EXPECT_EQ(iter.flags, 0x80);
    old->put('c', '3');
    iter = *old;
    EXPECT_EQ(other.iters.length(), 0u);
    old->cleanup();
    iter = other;
    old.reset(); // cleans up a second time
    EXPECT_EQ(iter.dict, &other);
    EXPECT_EQ(letterAt(iter), 'b');
}

} // namespace
