#include "util/Set.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <type_traits>
#include <unistd.h>

#include "support/CountingEntry.h"
#include "support/RecordingTranscriber.h"
#include "util/StrSetIter.h"
#include "util/TmpSet.h"

namespace {

class ProbeSet : public qzSet {
  public:
    ProbeSet(unsigned keySize, unsigned chains) : qzSet(keySize, chains) {}
    ~ProbeSet() override { cleanup(); }

    using qzSet::buckets;
    using qzSet::iters;

    unsigned hashKey(const void* key) const override { return qzSet::hashKey(key); }
    int compareKeys(const void* a, const void* b) const override {
        return looseCompare ? std::memcmp(a, b, 1) : qzSet::compareKeys(a, b);
    }
    void copyKey(const void* src, void* dst) const override {
        live.construct(dst);
        qzSet::copyKey(src, dst);
    }
    void destroyKey(void* key) const override { live.destroy(key); }
    unsigned char xdrKey(qzTranscriber&, void*) override { return 0; }

    unsigned entrySize() const { return keySize; }
    void put(char key) { add(fourBytes(key).data()); }
    void drop(char key) { remove(fourBytes(key).data()); }

    mutable LiveAddresses live;
    bool looseCompare = false;
};

static_assert(std::has_virtual_destructor_v<qzSetIter>);

void runProgram(unsigned keySize) {
    std::mt19937 random(2401 + keySize);
    using Both = Modelled<ProbeSet, qzSetIter>;
    Both sets[] = {Both(3, keySize), Both(0, keySize), Both(1, keySize)};
    for (int step = 0; step < 6000; ++step) {
        Both& both = sets[random() % 3];
        Both& other = sets[random() % 3]; // which may be the same one
        const std::string key = randomKey(random, keySize);
        const void* const found = both.probe.find(key.data());
        ASSERT_EQ(!found, !both.model.find(key));
        ASSERT_EQ(both.probe.contains(key.data()), found != nullptr);
        const void* const anyKey = found && step % 2 ? found : key.data();
        const auto entries = both.model.entries(), otherEntries = other.model.entries();
        const unsigned operation = random() % 30;
        if (operation == 0) {
            ASSERT_EQ(&(both.probe |= other.probe), &both.probe);
            for (const auto& entry : otherEntries)
                both.model.add(entry.key);
        } else if (operation == 1) {
            ASSERT_EQ(&(both.probe &= other.probe), &both.probe);
            for (const auto& entry : entries)
                if (!other.model.find(entry.key)) both.model.remove(entry.key);
        } else if (operation == 2) {
            ASSERT_EQ(&(both.probe -= other.probe), &both.probe);
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
    for (unsigned keySize : {6, 2, 1, 8}) {
        SCOPED_TRACE(keySize);
        ASSERT_NO_FATAL_FAILURE(runProgram(keySize));
    }
}

TEST(qzSet, DefaultComparisonTakesUnsignedBytes) {
    EXPECT_LT(ProbeSet(6, 0).compareKeys("akey\x7f\xff", "akey\x80?"), 0);
    EXPECT_GT(ProbeSet(5, 0).compareKeys("akey\x80?", "akey\x7f\xff"), 0);
    EXPECT_EQ(ProbeSet(4, 0).compareKeys("akey\x80", "akey\x7f"), 0);
    EXPECT_EQ(ProbeSet(0, 0).compareKeys("a", "b"), 0);
}

TEST(qzSet, AddingAnEqualKeyKeepsTheStoredBytes) {
    ProbeSet set(4, 1);
    set.looseCompare = true;
    set.add("akey");
    set.add("aKEY");
    EXPECT_EQ(picture(set), "akey |");
}

void expectWithoutChains(qzSet& set) {
    const ProbeSet none(4, 1);
    ProbeSet some(4, 1);
    some.put('a');
    set.remove("a...");
    ((set |= none) &= some) -= some;
    EXPECT_EQ(set.size(), 0u);
    EXPECT_FALSE(set.contains("a..."));
    const qzSetIter iter(set);
    EXPECT_FALSE(iter.notDone() || iter.attached());
    EXPECT_TRUE(iter.removed());
    EXPECT_EQ(((some -= set) |= set).size(), 1u);
    EXPECT_EQ((some &= set).size(), 0u);
}

TEST(qzSet, CopyOfAnEmptySetFindsNothing) {
    ProbeSet emptied(4, 5);
    emptied.put('a');
    emptied.drop('a');
    ProbeSet copy(emptied);
    EXPECT_EQ(copy.buckets.length() + copy.getKeySize(), 0u);
    expectWithoutChains(copy);
    qzTmpSet temporary(emptied), copiedAgain(temporary);
    expectWithoutChains(copiedAgain);
}

TEST(qzSet, AssigningAnEmptySetDropsKeysAndChains) {
    ProbeSet set(4, 5);
    set.put('a');
    set.put('b');
    const qzSetIter iter(set);
    const qzSet &base = set, &empty = ProbeSet(4, 2);
    set.qzSet::operator=(base);
    EXPECT_EQ(set.size(), 2u);
    EXPECT_TRUE(iter.notDone());
    set.qzSet::operator=(empty);
    EXPECT_TRUE(set.live.empty());
    EXPECT_EQ(set.buckets.length(), 0u);
    EXPECT_FALSE(iter.notDone() || iter.attached());
    expectWithoutChains(set);
}

TEST(qzSet, CleanupTwiceFreesOnce) {
    ProbeSet set(4, 1), other(4, 1);
    set.put('a');
    set.put('b');
    other.put('c');
    qzSetIter first(set), last(set), elsewhere(set);
    ++last;
    set.cleanup();
    EXPECT_TRUE(set.live.empty());
    EXPECT_EQ(set.size(), 0u);
    EXPECT_TRUE(set.buckets[0]);
    EXPECT_FALSE(set.contains("a..."));
    set.drop('b');
    for (const qzSetIter* iter : {&first, &last})
        EXPECT_FALSE(iter->notDone() || iter->attached() || iter->getKey());
    elsewhere = other;
    set.cleanup(); // and once more at the end
    EXPECT_EQ(letterAt(elsewhere), 'c');
}

TEST(qzSet, FailedReadLeavesNoKeyBehind) {
    qzStrSet set;
    set.add("a");
    RecordingTranscriber t(word(0) + word(8) + word(~0u)); // chains that no memory holds
    EXPECT_FALSE(set.xdr(t));
    EXPECT_EQ(set.size(), 0u);
    EXPECT_FALSE(qzStrSetIter(set).notDone());
}

const auto aborted = testing::KilledBySignal(SIGABRT);

TEST(qzSetDeathTest, CopyingKeysIsFatal) {
    ProbeSet set(4, 3), empty(4, 3), copy(empty);
    set.put('a');
    const std::string holdsKeys = "^qzSet: a set that holds keys cannot be ";
    EXPECT_EXIT(ProbeSet{set}, aborted, holdsKeys + "copied\n$");
    EXPECT_EXIT(qzTmpSet{set}, aborted, holdsKeys + "copied\n$");
    EXPECT_EXIT(empty = set, aborted, holdsKeys + "assigned\n$");
    EXPECT_EXIT(copy.put('a'), aborted, "^qzSet: a set without chains takes no keys\n$");
    EXPECT_EXIT(copy |= set, aborted, "^qzSet: a set without chains takes no keys\n$");
}

// Standard output goes where the parent looks, buffered as for a file.
template <class Call> void expectMissing(Call call, const char* operation) {
    const auto callOnStderr = [call] {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        std::setvbuf(stdout, nullptr, _IOFBF, BUFSIZ);
        call();
    };
    EXPECT_EXIT(callOnStderr(), aborted,
                std::string("^Unimplemented operator overloading is called!  qzTmpSet operator") +
                    operation + "\\(qzSet const &\\)\n$");
}

TEST(qzSetDeathTest, BinaryOperatorsSayTheyAreMissing) {
    const ProbeSet set(4, 0);
    const qzTmpSet other(set);
    expectMissing([&] { set | other; }, "\\|");
    expectMissing([&] { set& other; }, "&");
    expectMissing([&] { set - other; }, "-");
    const qzStrSet strings;
    expectMissing([&] { strings | strings; }, "\\|");
    expectMissing([&] { strings& strings; }, "&");
    expectMissing([&] { strings - strings; }, "-");
}

} // namespace
