#include "util/Array.h"

#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "util/BoolArray.h"
#include "util/IntArray.h"
#include "util/LongArray.h"
#include "util/StrArray.h"
#include "util/StubFuncArray.h"
#include "util/VoidPtrArray.h"

namespace {

// The bookkeeping, which counts in bytes.
template <class Array> struct Probe : Array {
    using Array::allocated;
    using Array::Array;
    using Array::data;
    using Array::used;
};
using IntProbe = Probe<qzIntArray>;

template <class Array> Array fromInts(const std::vector<int>& values) {
    Array a;
    for (int value : values)
        a.append(value);
    return a;
}

std::vector<int> toInts(const qzIntArray& a) {
    std::vector<int> values;
    for (unsigned i = 0; i < a.length(); ++i)
        values.push_back(a[i]);
    return values;
}

// Elements whose constructions and destructions are counted.
struct Counter {
    static int live;
    int value;
};
int Counter::live = 0;

class CounterArray : public qzArray {
  public:
    explicit CounterArray(unsigned n = 0) : qzArray(sizeof(Counter), n) {
        createElements(data, used);
    }
    ~CounterArray() override { destroy(); }
    const char* className() const override { return "ARRAY"; }
    void createElements(void* p, unsigned nbytes) override { build(p, nullptr, nbytes); }
    void destroyElements(void*, unsigned nbytes) override {
        Counter::live -= static_cast<int>(nbytes / sizeof(Counter));
    }
    void copyElements(const void* src, void* dst, unsigned nbytes) const override {
        build(dst, src, nbytes);
    }
    void add(int value) {
        const Counter counter = {value};
        append(&counter);
    }
    int at(unsigned i) const { return static_cast<Counter*>((*this)[i])->value; }

  private:
    static void build(void* dst, const void* src, unsigned nbytes) {
        Counter::live += static_cast<int>(nbytes / sizeof(Counter));
        if (src) {
            std::memmove(dst, src, nbytes);
        } else {
            std::memset(dst, 0, nbytes);
        }
    }
};

TEST(qzArray, SingleAppendsGrowByFourEverythingElseExactly) {
    IntProbe a;
    EXPECT_EQ(a.data, nullptr);
    for (int i = 0; i < 5; ++i)
        a.append(i);
    EXPECT_EQ(a.allocated, 32u);
    EXPECT_EQ(a.length(), 5u);

    a.setMaxLength(0); // trims to what is used
    EXPECT_EQ(a.allocated, 20u);
    a.insert(7, 0); // one more, not four
    EXPECT_EQ(a.allocated, 24u);
    a.append(fromInts<qzIntArray>({8, 9}));
    EXPECT_EQ(a.allocated, 32u);
    a.remove(0, 6);
    EXPECT_EQ(a.allocated, 32u); // kept
    a.resize(1);
    EXPECT_EQ(a.allocated, 4u);
    a.setMaxLength(10);
    EXPECT_EQ(a.allocated, 40u);
    EXPECT_EQ(toInts(a), (std::vector<int>{8}));
    a.resize(0);
    EXPECT_EQ(a.data, nullptr);
}

TEST(qzArray, HasItsConstructedLengthAtOnce) {
    EXPECT_EQ(qzIntArray(3).length(), 3u);
    EXPECT_EQ(qzIntArray(3).elementSize(), 4);
    EXPECT_EQ(qzStrArray(3).length(), 3u);
    EXPECT_TRUE(qzStrArray(3)[2] == "");
    EXPECT_EQ(qzVoidPtrArray(2)[1], nullptr);
    EXPECT_EQ(qzStubFuncArray(2).length(), 2u);
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
        switch (below(9)) {
        case 0:
            a.append(step);
            model.push_back(step);
            break;
        case 1:
            a.insert(step, pos);
            model.insert(model.begin() + pos, step);
            break;
        case 2:
            a.remove(pos, std::min(count, 3u));
            model.erase(model.begin() + pos, model.begin() + pos + std::min(count, 3u));
            break;
        case 3: {
            const qzIntArray part = a.extract(pos, count);
            a.append(part);
            const std::vector<int> copy(model.begin() + pos, model.begin() + pos + count);
            model.insert(model.end(), copy.begin(), copy.end());
            EXPECT_EQ(toInts(part), copy);
            break;
        }
        case 4: {
            const qzIntArray part = a.cut(pos, count);
            EXPECT_EQ(toInts(part),
                      std::vector<int>(model.begin() + pos, model.begin() + pos + count));
            model.erase(model.begin() + pos, model.begin() + pos + count);
            break;
        }
        case 5:
            if (pos == model.size()) break;
            a.swap(pos, 0);
            std::swap(model[pos], model[0]);
            break;
        case 6:
            EXPECT_EQ(toInts(a.head(count)),
                      std::vector<int>(model.begin(), model.begin() + count));
            EXPECT_EQ(toInts(a.tail(count)), std::vector<int>(model.end() - count, model.end()));
            break;
        case 7: {
            const int wanted = model.empty() ? 0 : model[below(model.size())];
            const auto hit = std::find(model.begin() + pos, model.end(), wanted);
            EXPECT_EQ(a.find(wanted, pos), hit == model.end() ? -1 : hit - model.begin());
            break;
        }
        case 8:
            a.setMaxLength(below(100));
            break;
        }
        if (model.size() > 200) {
            a.resize(50);
            model.resize(50);
        }
        ASSERT_EQ(toInts(a), model);
    }
}

TEST(qzArray, ArgumentsMayLieInsideTheArray) {
    qzIntArray a = fromInts<qzIntArray>({1, 2, 3, 4});
    a.append(a[0]); // the block is full and moves
    a.insert(a[4], 0);
    a.insert(a[0], 3);
    EXPECT_EQ(toInts(a), (std::vector<int>{1, 1, 2, 1, 3, 4, 1}));
    a = fromInts<qzIntArray>({1, 2, 3});
    a.insert(a, 1);
    EXPECT_EQ(toInts(a), (std::vector<int>{1, 1, 2, 3, 2, 3}));
    a.append(a);
    EXPECT_EQ(a.length(), 12u);
    a = *&a;
    EXPECT_EQ(a.length(), 12u);

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
    EXPECT_EQ(all, "aabcd"
                   "aabcda"
                   "a");
}

TEST(qzArray, ElementsAreConstructedAndDestroyedOnce) {
    Counter::live = 0;
    {
        CounterArray a(3);
        for (int i = 0; i < 6; ++i)
            a.add(i);
        EXPECT_EQ(Counter::live, 9);
        a.insert(a[8], 0);
        EXPECT_EQ(a.at(0), 5);
        a.remove(0, 4);
        EXPECT_EQ(Counter::live, 6);
        a.resize(10);
        EXPECT_EQ(Counter::live, 10);
        a.resize(2);
        EXPECT_EQ(Counter::live, 2);
        a.insert(a, 1);
        EXPECT_EQ(Counter::live, 4);
        std::free(a.raw_cut(0, 1)); // moved out, so still alive
        EXPECT_EQ(Counter::live, 4);
        EXPECT_EQ(a.length(), 3u);
        std::free(a.raw_copy());
        EXPECT_EQ(Counter::live, 7);
    }
    EXPECT_EQ(Counter::live, 4);
}

TEST(qzArray, NoElementsMeanNoBlock) {
    qzIntArray a = fromInts<qzIntArray>({1, 2});
    EXPECT_EQ(a.raw_extract(1, 0), nullptr);
    EXPECT_EQ(a.raw_head(0), nullptr);
    EXPECT_EQ(a.raw_tail(0), nullptr);
    EXPECT_EQ(a.raw_cut(2, 0), nullptr);
    EXPECT_EQ(a.extract(0, 0).length(), 0u);
    EXPECT_EQ(a.length(), 2u);
    EXPECT_EQ(a.find(1, 2), -1);
    EXPECT_EQ(a.find(1, 99), -1);
    qzIntArray empty;
    EXPECT_EQ(empty.raw_copy(), nullptr);
    empty.qsort();
    empty.append(empty);
    EXPECT_EQ(empty.length(), 0u);
}

TEST(qzArray, PlainElementsOrderByBytesNotByValue) {
    // In memory 256 begins with a zero byte and -1 with 0xff.
    qzIntArray a = fromInts<qzIntArray>({1, -1, 256, 0x01010101});
    a.qsort();
    EXPECT_EQ(toInts(a), (std::vector<int>{256, 1, 0x01010101, -1}));
    EXPECT_EQ(a.compareElements(&a[0], &a[1]), -1);
    EXPECT_EQ(a.compareElements(&a[1], &a[0]), 1);
    EXPECT_EQ(a.compareElements(&a[1], &a[1]), 0);
}

TEST(qzArray, LargeElementsAreMovedWhole) {
    struct Large {
        char bytes[3000];
    };
    struct LargeArray : qzArray {
        LargeArray() : qzArray(sizeof(Large), 0) {}
        const char* className() const override { return "ARRAY"; }
        char tag(unsigned i) const { return static_cast<char*>((*this)[i])[2999]; }
    } a;
    for (char c : {'c', 'a', 'b'}) {
        Large large;
        std::memset(&large, c, sizeof large);
        a.append(&large);
    }
    a.swap(0, 2);
    EXPECT_EQ(a.tag(0), 'b');
    EXPECT_EQ(a.tag(2), 'c');
    a.qsort();
    EXPECT_EQ(a.tag(0), 'a');
    EXPECT_EQ(a.tag(1), 'b');
}

TEST(qzTypedArray, CopiesAreIndependentAndExact) {
    Probe<qzStrArray> a;
    for (const char* text : {"one", "", "three"})
        a.append(text);
    Probe<qzStrArray> b(a);
    EXPECT_EQ(b.allocated, b.used);
    b[0] = "changed";
    b.append("more");
    EXPECT_TRUE(a[0] == "one");
    a = b; // the old strings go, as the sanitizer build confirms
    EXPECT_EQ(a.length(), 4u);
    EXPECT_EQ(a.allocated, a.used);
    EXPECT_TRUE(a[3] == "more");
    EXPECT_EQ(a[1].data, &qzStr::emptyString);
    EXPECT_EQ(a.find("three", 0), 2);
    EXPECT_EQ(a.find("absent", 0), -1);
    EXPECT_STREQ(a.className(), "ARRAY");
}

TEST(qzTypedArray, AdoptedBlocksAreFreedByTheArray) {
    int* block = static_cast<int*>(std::malloc(3 * sizeof(int)));
    for (int i = 0; i < 3; ++i)
        block[i] = i;
    qzIntArray a(sizeof(int), 3 * sizeof(int), block);
    EXPECT_EQ(&a[0], block);
    EXPECT_EQ(toInts(a), (std::vector<int>{0, 1, 2}));
}

// A class derived from a member keeps its own order, however it is called.
TEST(qzTypedArray, DerivedClassesSortByTheirOwnComparison) {
    struct Descending : qzIntArray {
        int compareElements(const void* a, const void* b) const override {
            return *static_cast<const int*>(b) - *static_cast<const int*>(a);
        }
    } a;
    for (int value : {3, 1, 256, 2})
        a.append(value);
    a.qsort();
    EXPECT_EQ(toInts(a), (std::vector<int>{256, 3, 2, 1}));

    struct Member : qzTypedArray<Member, int> { // one of its own
        int compareElements(const void* a, const void* b) const override {
            return *static_cast<const int*>(b) - *static_cast<const int*>(a);
        }
    } b;
    for (int value : {3, 1, 256, 2})
        b.append(value);
    b.qsort();
    EXPECT_EQ(b[0], 256);
    EXPECT_EQ(b[3], 1);
}

} // namespace
