#include "util/Dictionary.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "support/ChainModel.h"
#include "util/DictIter.h"

namespace {

class ProbeDict : public qzDictionary {
  public:
    ProbeDict(unsigned keySize, unsigned chains) : qzDictionary(keySize, 4, chains) {}
    ProbeDict(const ProbeDict& other) : qzDictionary(other) { *this = other; }
    ProbeDict& operator=(const ProbeDict& other) {
        qzDictionary::operator=(other);
        return *this;
    }
    ~ProbeDict() override { cleanup(); }

    using qzDictionary::buckets;
    using qzDictionary::iters;

    const char* className() const override { return "PROBE"; }
    unsigned hashKey(const void* key) const override { return qzDictionary::hashKey(key); }
    int compareKeys(const void* searched, const void* stored) const override {
        EXPECT_TRUE(live.count(stored));
        return std::memcmp(searched, stored, comparedBytes ? comparedBytes : keySize);
    }
    void copyKey(const void* src, void* dst) const override { live.copy(src, dst, keySize); }
    void destroyKey(void* key) const override { live.destroy(key); }
    void copyValue(const void* src, void* dst) const override { live.copy(src, dst, 4); }
    void destroyValue(void* value) const override { live.destroy(value); }
    void createValue(void* dst) const override { live.copy("new!", dst, 4); }
    unsigned char xdrKey(qzTranscriber&, void*) override { return 0; }
    unsigned char xdrValue(qzTranscriber&, void*) override { return 0; }
    unsigned entrySize() const { return keySize + 4; }

    mutable LiveAddresses live;
    unsigned comparedBytes = 0; // 0: all
};

static_assert(!std::is_polymorphic_v<qzDictIter>);
static_assert(sizeof(qzDictBucket) == 2 * sizeof(void*), "two pointers a node");

void runProgram(unsigned keySize, unsigned chains) {
    std::mt19937 random(2301 + keySize);
    Modelled<ProbeDict, qzDictIter> both(chains, keySize);
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
        const unsigned operation = random() % 10;
        if (operation == 0) {
            const auto* stored = static_cast<char*>(dict.findCreate(anyKey));
            ASSERT_EQ(std::string(stored, 4), expected ? expected->value : "new!");
            if (!expected) model.add(key, "new!");
        } else if (operation == 1) {
            const std::string stored = expected ? expected->value : "";
            auto* const cut = static_cast<char*>(dict.cut(anyKey));
            ASSERT_EQ(std::string(cut ? cut : "", cut ? 4 : 0), stored);
            if (cut) dict.live.destroy(found); // it lives in the block now
            std::free(cut);
            model.remove(key);
        } else if (operation > 4) {
            both.moveSomeIterator(random);
        } else if (step / 150 % 2) { // fills up, then runs empty
            dict.remove(anyKey);
            model.remove(key);
        } else {
            const qzDictBucket* added = dict.addInternal(anyKey, value.data());
            ASSERT_EQ(std::string(added->kvmem, keySize + 4), key + value);
            model.add(key, value);
        }
        for (const auto& i : both.iters)
            ASSERT_EQ(i->getValue(), i->getKey() ? i->node->kvmem + keySize : nullptr);
        ASSERT_EQ(dict.live.size(), 2 * dict.size());
        ASSERT_NO_FATAL_FAILURE(both.expectSame()) << "step " << step;
    }
    ChainModel reversed(chains);
    for (const auto& entry : model.entries)
        reversed.add(entry.key, entry.value);
    EXPECT_EQ(picture(ProbeDict(dict)), picture(reversed));
}

TEST(qzDictionary, AgreesWithAModelOfItsChainsAndIterators) {
    ASSERT_NO_FATAL_FAILURE(runProgram(6, 5));
    ASSERT_NO_FATAL_FAILURE(runProgram(9, 0)); // 31 chains
    ASSERT_NO_FATAL_FAILURE(runProgram(1, 3));
}

TEST(qzDictionary, AssignmentMerges) {
    ProbeDict target(4, 1), source(8, 1);
    target.comparedBytes = 1;
    target.addInternal("akey", "old1");
    target.addInternal("bkey", "old2");
    source.addInternal("b...five", "six.");
    source.addInternal("c...nine", "ten.");
    target = source; // the first key stays; values are where the target has them
    EXPECT_EQ(picture(target), "0 c...nine 0 bkeyfive 0 akeyold1 ");
    target = static_cast<ProbeDict&>(target);
    EXPECT_EQ(target.size(), 3u);
}

TEST(qzDictionary, CleanupDetachesIteratorsAndKeepsSize) {
    auto dict = std::make_unique<ProbeDict>(4, 2);
    ProbeDict other(4, 1);
    dict->addInternal("akey", "val1");
    other.addInternal("bkey", "val2");
    qzDictIter iter(*dict), moved(*dict);
    iter.flags |= 0x40;
    dict->cleanup();
    EXPECT_TRUE(dict->live.empty() && picture(*dict).empty());
    EXPECT_EQ(dict->size(), 1u);
    EXPECT_EQ(dict->iters.length(), 2u);
    EXPECT_EQ(iter.flags, 0x41);
    EXPECT_FALSE(iter.attached() || (++iter).notDone());
    moved = other;
    dict.reset(); // cleans up a second time
    EXPECT_TRUE(moved.getKey());
}

} // namespace
