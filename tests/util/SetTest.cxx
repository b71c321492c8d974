#include "util/Set.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <type_traits>
#include <unistd.h>

#include "support/ChainModel.h"
#include "util/SetIter.h"
#include "util/StrSet.h"

namespace {

class ProbeSet : public qzSet {
  public:
    ProbeSet(unsigned keySize, unsigned chains) : qzSet(keySize, chains) {}
    ~ProbeSet() override { cleanup(); }

    using qzSet::buckets;
    using qzSet::compareKeys;
    using qzSet::iters;

    void copyKey(const void* src, void* dst) const override { live.copy(src, dst, keySize); }
    void destroyKey(void* key) const override { live.destroy(key); }
    unsigned char xdrKey(qzTranscriber&, void*) override { return 0; }
    unsigned entrySize() const { return keySize; }

    mutable LiveAddresses live;
};

static_assert(std::has_virtual_destructor_v<qzSetIter>);

void runProgram(unsigned keySize) {
    std::mt19937 random(2401 + keySize);
    using Both = Modelled<ProbeSet, qzSetIter>;
    Both sets[] = {Both(3, keySize), Both(0, keySize), Both(1, keySize)};
    for (int step = 0; step < 6000; ++step) {
        Both &both = sets[random() % 3], &other = sets[random() % 3]; // perhaps the same
        const std::string key = randomKey(random, keySize);
        const void* const found = both.probe.find(key.data());
        ASSERT_EQ(!found, !both.model.find(key));
        const void* const anyKey = found && step % 2 ? found : key.data();
        const auto entries = both.model.entries, otherEntries = other.model.entries;
        const unsigned operation = random() % 30;
        if (operation == 0) {
            both.probe |= other.probe;
            for (const auto& entry : otherEntries)
                both.model.add(entry.key);
        } else if (operation == 1) {
            both.probe &= other.probe;
            for (const auto& entry : entries)
                if (!other.model.find(entry.key)) both.model.remove(entry.key);
        } else if (operation == 2) {
            both.probe -= other.probe;
            for (const auto& entry : otherEntries)
                both.model.remove(entry.key);
        } else if (operation < 7) {
            both.probe.remove(anyKey);
            both.model.remove(key);
        } else if (operation < 18) {
            both.probe.add(anyKey);
            both.model.add(key);
        } else {
            both.moveSomeIterator(random);
        }
        ASSERT_EQ(both.probe.live.size(), both.probe.size());
        ASSERT_NO_FATAL_FAILURE(both.expectSame()) << "step " << step;
    }
}

TEST(qzSet, AgreesWithAModelOfItsChainsAndIterators) {
    for (unsigned keySize : {6, 2, 8})
        ASSERT_NO_FATAL_FAILURE(runProgram(keySize)) << keySize;
    EXPECT_LT(ProbeSet(5, 0).compareKeys("akey\x7f", "akey\x80"), 0);
}

TEST(qzSet, CopyOfAnEmptySetFindsNothing) {
    ProbeSet emptied(4, 5), some(4, 1);
    emptied.add("akey");
    emptied.remove("akey");
    some.add("akey");
    ProbeSet copy(emptied);
    EXPECT_EQ(copy.buckets.length() + copy.getKeySize(), 0u);
    copy.remove("akey");
    ((copy |= emptied) &= some) -= some;
    EXPECT_FALSE(copy.size() || copy.contains("akey") || qzSetIter(copy).notDone());
    EXPECT_EQ(((some -= copy) |= copy).size(), 1u);
    EXPECT_EQ((some &= copy).size(), 0u);
}

TEST(qzSet, AssigningAnEmptySetDropsKeysAndChains) {
    ProbeSet set(4, 5);
    set.add("akey");
    const qzSetIter iter(set);
    static_cast<qzSet&>(set) = static_cast<qzSet&>(set);
    EXPECT_TRUE(set.contains("akey"));
    static_cast<qzSet&>(set) = ProbeSet(4, 2);
    EXPECT_EQ(set.live.size() + set.buckets.length(), 0u);
    EXPECT_FALSE(set.contains("akey") || iter.notDone() || iter.attached());
}

TEST(qzSet, CleanupTwiceFreesOnce) {
    ProbeSet set(4, 1);
    set.add("akey");
    const qzSetIter iter(set);
    set.cleanup(); // and once more at the end
    EXPECT_EQ(set.live.size() + set.size(), 0u);
    EXPECT_TRUE(set.buckets[0]);
    EXPECT_FALSE(set.contains("akey") || iter.notDone() || iter.attached());
}

const auto aborted = testing::KilledBySignal(SIGABRT);

TEST(qzSetDeathTest, CopyingKeysIsFatal) {
    ProbeSet set(4, 3), empty(4, 3), copy(empty);
    set.add("akey");
    const std::string holdsKeys = "^qzSet: a set that holds keys cannot be ";
    EXPECT_EXIT(ProbeSet{set}, aborted, holdsKeys + "copied\n$");
    EXPECT_EXIT(empty = set, aborted, holdsKeys + "assigned\n$");
    EXPECT_EXIT(copy |= set, aborted, "^qzSet: a set without chains takes no keys\n$");
}

// Standard output goes where the parent looks, buffered as for a file.
template <class Call> void expectMissing(Call call, const char* operation) {
    EXPECT_EXIT(dup2(STDERR_FILENO, STDOUT_FILENO); std::setvbuf(stdout, nullptr, _IOFBF, BUFSIZ);
                call(), aborted,
                std::string("^Unimplemented operator overloading is called!  qzTmpSet operator") +
                    operation + "\\(qzSet const &\\)\n$");
}

TEST(qzSetDeathTest, BinaryOperatorsSayTheyAreMissing) {
    const qzStrSet set; // forwards to the base's
    expectMissing([&] { set | set; }, "\\|");
    expectMissing([&] { set& set; }, "&");
    expectMissing([&] { set - set; }, "-");
}

} // namespace
