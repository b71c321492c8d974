#include "util/Array.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "util/IntArray.h"
#include "util/StrArray.h"
#include "util/VoidPtrArray.h"

namespace {

// The bookkeeping, which counts in bytes.
template <class Array> struct Probe : Array {
    using Array::allocated;
    using Array::Array;
    using Array::data;
    using Array::used;
};

qzIntArray fromInts(const std::vector<int>& values) {
    qzIntArray a;
    for (int value : values)
        a.append(value);
    return a;
}

std::vector<int> toInts(const qzIntArray& a) {
    return a.length() ? std::vector<int>(&a[0], &a[0] + a.length()) : std::vector<int>();
}

// Elements whose constructions and destructions are counted.
struct Counter {
    static inline int live = 0;
    Counter(int value = 0) : value(value) { ++live; }
    Counter(const Counter& other) : Counter(other.value) {}
    ~Counter() { --live; }
    int value;
};
int compare(const Counter& a, const Counter& b) { return a.value - b.value; }

struct CounterArray : qzTypedArray<CounterArray, Counter, qzObjectElements<Counter>> {
    using qzTypedArray::qzTypedArray;
};

TEST(qzArray, SingleAppendsGrowByFourEverythingElseExactly) {
    Probe<qzIntArray> a;
    const auto expectCapacity = [&a](unsigned bytes) { EXPECT_EQ(a.allocated, bytes); };
    for (int i = 0; i < 5; ++i)
        a.append(i);
    expectCapacity(32);
    a.setMaxLength(0); // trims to what is used
    expectCapacity(20);
    a.insert(7, 0); // one more, not four
    expectCapacity(24);
    a.append(fromInts({8, 9}));
    expectCapacity(32);
    a.remove(0, 6);
    expectCapacity(32); // kept
    a.resize(1);
    expectCapacity(4);
    a.setMaxLength(10);
    expectCapacity(40);
    a.resize(0);
    EXPECT_EQ(a.data, nullptr);
    EXPECT_EQ(qzIntArray(3).length(), 3u); // at once
    EXPECT_EQ(qzVoidPtrArray(2)[1], nullptr);
}

TEST(qzArray, RandomEditsAgreeWithVector) {
    std::mt19937 random(20);
    qzIntArray a;
    std::vector<int> model;
    const auto below = [&](std::size_t n) { return static_cast<unsigned>(random() % n); };
    for (int step = 0; step < 5000; ++step) {
        SCOPED_TRACE(step);
        const unsigned pos = below(model.size() + 1);
        const unsigned count = below(model.size() - pos + 1);
        const auto at = model.begin() + pos;
        const std::vector<int> part(at, at + count);
        switch (below(8)) {
        case 0:
            a.append(step);
            model.push_back(step);
            break;
        case 1:
            a.insert(step, pos);
            model.insert(at, step);
            break;
        case 2:
            a.remove(pos, count / 4);
            model.erase(at, at + count / 4);
            break;
        case 3:
            a.append(a.extract(pos, count));
            model.insert(model.end(), part.begin(), part.end());
            break;
        case 4:
            ASSERT_EQ(toInts(a.cut(pos, count)), part);
            model.erase(at, at + count);
            break;
        case 5:
            if (count == 0) break;
            a.swap(pos, 0);
            std::swap(model[pos], model[0]);
            break;
        case 6:
            ASSERT_EQ(toInts(a.head(pos)), std::vector<int>(model.begin(), at));
            ASSERT_EQ(toInts(a.tail(pos)), std::vector<int>(model.end() - pos, model.end()));
            break;
        case 7: {
            const int wanted = model.empty() ? 0 : model[below(model.size())];
            const auto hit = std::find(at, model.end(), wanted);
            ASSERT_EQ(a.find(wanted, pos), hit == model.end() ? -1 : hit - model.begin());
            a.setMaxLength(pos);
        }
        }
        model.resize(std::min<std::size_t>(model.size(), 200));
        a.resize(static_cast<unsigned>(model.size()));
        ASSERT_EQ(toInts(a), model);
    }
}

TEST(qzArray, ArgumentsMayLieInsideTheArray) {
    qzIntArray a = fromInts({1, 2, 3, 4});
    a.append(a[0]); // the block is full and moves
    a.insert(a[4], 0);
    a.insert(a[0], 3);
    EXPECT_EQ(toInts(a), (std::vector<int>{1, 1, 2, 1, 3, 4, 1}));
    a = fromInts({1, 2, 3});
    a.insert(a, 1);
    a.append(a);
    a = *&a;
    EXPECT_EQ(toInts(a), (std::vector<int>{1, 1, 2, 3, 2, 3, 1, 1, 2, 3, 2, 3}));

    qzStrArray s;
    for (const char* text : {"a", "b", "c", "d"})
        s.append(text);
    s.append(s[0]);
    s.insert(s[4], 1);
    s.insert(s, 5);
    s = *&s;
    std::string all;
    for (unsigned i = 0; i < s.length(); ++i)
        all += s[i].data;
    EXPECT_EQ(all, "aabcdaabcdaa");
}

TEST(qzArray, ElementsAreConstructedAndDestroyedOnce) {
    {
        CounterArray a(3);
        for (int i = 0; i < 6; ++i)
            a.append(i);
        a.insert(a[8], 0);
        EXPECT_EQ(a[0].value, 5);
        a.remove(0, 4);
        a.resize(10);
        a.resize(2);
        a.insert(a, 1);
        EXPECT_EQ(Counter::live, 4);
        std::free(a.raw_cut(0, 1)); // moved out, so still alive
        std::free(a.raw_copy());
        EXPECT_EQ(Counter::live, 7);
        CounterArray copy(a);
        copy = a; // the old ones go
        EXPECT_EQ(Counter::live, 10);
    }
    EXPECT_EQ(Counter::live, 4);
}

TEST(qzArray, NoElementsMeanNoBlock) {
    qzIntArray a = fromInts({1, 2}), empty;
    EXPECT_FALSE(a.raw_extract(1, 0) || a.raw_head(0) || a.raw_tail(0) || a.raw_cut(2, 0));
    EXPECT_EQ(a.find(1, 99), -1);
    EXPECT_EQ(empty.raw_copy(), nullptr);
    empty.qsort();
    empty.append(empty);
    EXPECT_EQ(empty.length(), 0u);
}

TEST(qzArray, PlainElementsOrderByBytesNotByValue) {
    // In memory 256 begins with a zero byte and -1 with 0xff.
    qzIntArray a = fromInts({1, -1, 256, 0x01010101});
    a.qsort();
    EXPECT_EQ(toInts(a), (std::vector<int>{256, 1, 0x01010101, -1}));
    EXPECT_EQ(a.compareElements(&a[0], &a[1]), -1);
    EXPECT_EQ(a.compareElements(&a[1], &a[0]), 1);
}

TEST(qzArray, LargeElementsAreMovedWhole) {
    struct LargeArray : qzArray {
        LargeArray() : qzArray(3000, 0) {}
        const char* className() const override { return "ARRAY"; }
    } a;
    for (char c : {'c', 'a', 'b'})
        a.append(std::string(3000, c).data());
    a.swap(0, 2);
    const auto tag = [&a](unsigned i) { return static_cast<char*>(a[i])[2999]; };
    EXPECT_EQ(tag(2), 'c');
    a.qsort();
    EXPECT_TRUE(tag(0) == 'a' && tag(1) == 'b');
}

TEST(qzTypedArray, CopiesAreIndependentAndExact) {
    Probe<qzStrArray> a;
    for (const char* text : {"one", "", "three"})
        a.append(text);
    Probe<qzStrArray> b(a);
    EXPECT_EQ(b.allocated, b.used);
    b[0] = "changed";
    EXPECT_TRUE(a[0] == "one");
    a = b;
    EXPECT_EQ(a.allocated, a.used);
    EXPECT_TRUE(a[0] == "changed");
    EXPECT_EQ(a[1].data, &qzStr::emptyString);
    EXPECT_EQ(a.find("three"), 2);
    EXPECT_STREQ(a.className(), "ARRAY");
}

// A class keeps its own order: derived from a member, and a member itself.
TEST(qzTypedArray, OwnComparisonsRuleTheSort) {
    struct Descending : qzIntArray {
        int compareElements(const void* a, const void* b) const override {
            return *static_cast<const int*>(b) - *static_cast<const int*>(a);
        }
    } derived;
    struct Member : qzTypedArray<Member, int> {
        int compareElements(const void* a, const void* b) const override {
            return *static_cast<const int*>(b) - *static_cast<const int*>(a);
        }
    } member;
    for (int value : {3, 256, 2}) {
        derived.append(value);
        member.append(value);
    }
    derived.qsort();
    member.qsort();
    EXPECT_EQ(toInts(derived), (std::vector<int>{256, 3, 2}));
    EXPECT_TRUE(member[0] == 256 && member[2] == 2);
}

} // namespace
