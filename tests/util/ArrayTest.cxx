#include "util/Array.h"

#include <algorithm>
#include <array>
#include <functional>
#include <random>

#include <gtest/gtest.h>

#include "util/IntArray.h"
#include "util/StrArray.h"
#include "util/VoidPtrArray.h"

namespace {

// Elements whose constructions and destructions are counted.
struct Counter {
    static inline int live = 0;
    explicit Counter(int value = 0) : value(value) { ++live; }
    Counter(const Counter& other) : Counter(other.value) {}
    Counter& operator=(const Counter&) = default;
    ~Counter() { --live; }
    bool operator==(const Counter& other) const { return value == other.value; }
    int value;
    const Counter* self = this; // is not compared
};
int compare(const Counter& a, const Counter& b) { return a.value - b.value; }

struct CounterArray : qzTypedArray<CounterArray, Counter, qzObjectElements<Counter>> {
    using qzTypedArray::qzTypedArray;
};

// The bookkeeping, which counts in bytes.
struct ProbeArray : qzIntArray {
    using qzArray::allocated;
};

template <class Array, class Element = typename Array::Element>
std::vector<Element> elements(const Array& a) {
    return a.length() ? std::vector<Element>(&a[0], &a[0] + a.length()) : std::vector<Element>();
}

TEST(qzArray, SingleAppendsGrowByFourEverythingElseExactly) {
    ProbeArray a;
    for (int i = 0; i < 9; ++i)
        a.append(i);
    EXPECT_EQ(a.allocated, 48u);
    const struct {
        std::function<void()> change;
        unsigned bytes;
    } rows[] = {
        {[&] { a.setMaxLength(0); }, 36},                // trims to what is used
        {[&] { a.insert(7, 0); }, 40},                // one more, not four
        {[&] { a.append(a.head(2)); }, 48}, {[&] { a.remove(0, 10); }, 48}, // kept
        {[&] { a = ProbeArray(a); }, 8},    {[&] { a.setMaxLength(10); }, 40},
        {[&] { a.resize(1); }, 4},          {[&] { a.resize(0); }, 0},
    };
    for (const auto& row : rows) {
        row.change();
        EXPECT_EQ(a.allocated, row.bytes);
    }
    EXPECT_FALSE(a.raw_extract(0, 0) || a.raw_copy());
    EXPECT_TRUE(qzVoidPtrArray(2).length() == 2 && !qzVoidPtrArray(2)[1]);
}

template <class Array> void expectVectorsEdits() {
    using Element = typename Array::Element;
    std::mt19937 random(20);
    Array a;
    std::vector<Element> model, part; // part: n elements of the model, from at
    unsigned at = 0, n = 0;
    Element fresh, own; // own: the model's, at
    const auto put = [&](unsigned position, const std::vector<Element> elements) {
        model.insert(model.begin() + position, elements.begin(), elements.end());
    };
    const struct {
        std::function<void()> change, expected;
    } operations[] = {
        {[&] { a.append(fresh); }, [&] { model.push_back(fresh); }},
        {[&] { a.append(a[at]); }, [&] { model.push_back(own); }},
        {[&] { a.insert(fresh, at); }, [&] { put(at, {fresh}); }},
        {[&] { a.insert(a[at], n); }, [&] { put(n, {own}); }},
        {[&] { a.append(a); }, [&] { put(model.size(), model); }},
        {[&] { a.insert(a, at); }, [&] { put(at, model); }},
        {[&] { a.insert(a.extract(at, n), n); }, [&] { put(n, part); }},
        {[&] { a.append(a.cut(at, n)); },
         [&] { std::rotate(model.begin() + at, model.begin() + at + n, model.end()); }},
        {[&] { a.remove(at, n); },
         [&] { model.erase(model.begin() + at, model.begin() + at + n); }},
        {[&] { a = a.head(n); }, [&] { model.resize(n); }},
        {[&] { a = a.tail(n); }, [&] { model.erase(model.begin(), model.end() - n); }},
        {[&] { a.swap(at, n / 2); }, [&] { std::swap(model[at], model[n / 2]); }},
        {[&] { a.setMaxLength(at); }, [] {}},
        {[&] { a = *&a; }, [] {}},
        {[&] { a = Array(a); }, [] {}},
    };
    for (int step = 0; step < 10000; ++step) {
        fresh = Element(step);
        if (model.empty()) {
            a.resize(1);
            a[0] = fresh;
            model.push_back(fresh);
        }
        at = random() % model.size();
        n = random() % (model.size() - at + 1);
        own = model[at];
        part.assign(model.begin() + at, model.begin() + at + n);
        const auto hit = std::find(model.begin() + n, model.end(), own);
        ASSERT_EQ(a.find(own, n), hit == model.end() ? -1 : hit - model.begin());
        ASSERT_EQ(a.find(own, a.length() + n), -1);
        const unsigned i = random() % std::size(operations);
        operations[i].change();
        operations[i].expected();
        model.resize(std::min<std::size_t>(model.size(), 200));
        a.resize(static_cast<unsigned>(model.size()));
        ASSERT_EQ(elements(a), model) << "step " << step << ", operation " << i;
    }
}

TEST(qzArray, RandomEditsAgreeWithVector) {
    expectVectorsEdits<qzIntArray>();
    expectVectorsEdits<CounterArray>();
    EXPECT_EQ(Counter::live, 0);
}

TEST(qzArray, PlainElementsOrderByBytesNotByValue) {
    qzIntArray a;
    for (int value : {1, -1, 256, 0x01010101})
        a.append(value);
    a.qsort(); // in memory 256 begins with a zero byte and -1 with 0xff
    EXPECT_EQ(elements(a), (std::vector<int>{256, 1, 0x01010101, -1}));
    EXPECT_TRUE(a.compareElements(&a[0], &a[1]) == -1 && a.compareElements(&a[1], &a[0]) == 1);
}

// Sorting, against the plain recursive form of the same partition.
using Item = std::array<int, 2>; // the key, and what tells equal keys apart

// Derived from a member of the family, whose order it changes.
struct PlainItems : qzTypedArray<PlainItems, Item> {};
struct ItemArray : PlainItems {
    int compareElements(const void* a, const void* b) const override {
        ++comparisons;
        return *static_cast<const int*>(a) - *static_cast<const int*>(b);
    }
    mutable unsigned long long comparisons = 0;
};

// The first element is the pivot; scans stop at equal elements.
unsigned long long plainSort(std::vector<Item>& v, int lo, int hi) {
    unsigned long long comparisons = 0;
    const auto compare = [&](int i) {
        ++comparisons;
        return v[i][0] - v[lo][0];
    };
    int i = lo;
    int j = hi + 1;
    for (;;) {
        while (i < hi && compare(++i) < 0) {
        }
        while (j > lo && compare(--j) > 0) {
        }
        if (i >= j) break;
        std::swap(v[i], v[j]);
    }
    std::swap(v[lo], v[j]);
    if (lo < j - 1) comparisons += plainSort(v, lo, j - 1);
    if (j + 1 < hi) comparisons += plainSort(v, j + 1, hi);
    return comparisons;
}

TEST(qzArraySort, ExchangesAreThoseOfThePlainPartition) {
    std::mt19937 random(7);
    for (int round = 0; round < 400; ++round) {
        ItemArray a;
        std::vector<Item> model(1 + random() % 60);
        const unsigned distinct = 1 + random() % 40;
        for (Item& item : model) {
            item = {static_cast<int>(random() % distinct), static_cast<int>(a.length())};
            a.append(item);
        }
        const int last = static_cast<int>(model.size()) - 1;
        const unsigned long long expected = last ? plainSort(model, 0, last) : 0;
        a.qsort();
        ASSERT_EQ(elements(a), model) << "round " << round;
        ASSERT_EQ(a.comparisons, expected);
    }
}

// The shapes that drive a first-element pivot into the quadratic, and a large
// recursion with it.
TEST(qzArraySort, NoInputIsQuadratic) {
    static const int n = 20000;
    int (*const keys[])(int) = {
        [](int i) { return i; },
        [](int) { return 1; },
        [](int i) { return (i + n / 2) % n; },
    };
    for (const auto key : keys) {
        ItemArray a;
        for (int i = 0; i < n; ++i)
            a.append({key(i), i});
        a.qsort();
        // Heapsort takes 2 n log2 n; the splits before it at most 100 n.
        EXPECT_LT(a.comparisons, 140ull * n);
        for (int i = 1; i < n; ++i)
            ASSERT_LE(a[i - 1][0], a[i][0]);
    }
}

// Elements that compare as plain bytes take faster ways to the same bytes, by
// their size, number and order.
template <unsigned size>
struct BytesArray : qzTypedArray<BytesArray<size>, std::array<unsigned char, size>> {};

template <unsigned size>
void expectByteOrder(std::mt19937& random, unsigned length, unsigned values, unsigned shape) {
    std::vector<std::array<unsigned char, size>> model(length);
    for (auto& element : model)
        for (unsigned char& byte : element)
            byte = static_cast<unsigned char>(255 - random() % values);
    if (shape) std::sort(model.begin(), model.end());
    if (shape == 2) std::reverse(model.begin(), model.end());
    if (shape == 3) model.back() = model.front();
    BytesArray<size> a;
    for (const auto& element : model)
        a.append(element);
    const unsigned start = random() % (length / 4 + 1);
    const unsigned count = length - start - random() % (length / 4 + 1);
    std::sort(model.begin() + start, model.begin() + start + count);
    a.qsort(start, count);
    for (unsigned i = 0; i < length; ++i)
        ASSERT_EQ(a[i], model[i]) << i << " of " << length;
    const auto hit = std::find(model.begin() + start, model.end(), model.back());
    ASSERT_EQ(a.find(model.back(), start), hit - model.begin());
}

template <unsigned... sizes> void expectByteOrders() {
    std::mt19937 random(3);
    for (unsigned length : {1u, 2u, 31u, 65u, 300u, 3000u}) {
        for (unsigned values : {1u, 2u, 256u}) {
            for (unsigned shape : {0u, 1u, 2u, 3u})
                (expectByteOrder<sizes>(random, length, values, shape), ...);
        }
    }
    BytesArray<4>().qsort();
}

TEST(qzArraySort, PlainElementsOfEverySizeComeOutInByteOrder) {
    expectByteOrders<1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 700>();
}

// Through the base every comparison is a call of the class's own.
TEST(qzArraySort, StringsComeOutAsThePlainPartitionLeavesThem) {
    std::mt19937 random(5);
    for (int round = 0; round < 300; ++round) {
        const std::string common(random() % 12, 'p');
        const unsigned length = random() % 80, tail = 1 + random() % 12;
        qzStrArray strings;
        for (unsigned i = 0; i < length; ++i) {
            std::string text = common;
            for (unsigned k = random() % tail; k; --k)
                text += "\0a\xff"[random() % 3]; // strcmp takes many of these for equal
            strings.append(qzStr(text.data(), text.size()));
        }
        qzStrArray plain(strings);
        const unsigned start = random() % (length / 4 + 1), count = (length - start) * 3 / 4;
        strings.qsort(start, count);
        static_cast<qzArray&>(plain).qsort(start, count);
        for (unsigned i = 0; i < length; ++i)
            ASSERT_EQ(strings[i], plain[i]) << "round " << round;
    }
}

} // namespace
