// Sorting, against the plain recursive form of the same partition.
#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "util/DoubleArray.h"
#include "util/IntArray.h"
#include "util/ShortArray.h"

namespace {

struct Item {
    int key;
    int serial; // tells equal keys apart
    bool operator==(const Item& other) const { return key == other.key && serial == other.serial; }
};

class ItemArray : public qzArray {
  public:
    explicit ItemArray(const std::vector<int>& keys) : qzArray(sizeof(Item), 0) {
        for (int key : keys) {
            const Item item = {key, static_cast<int>(length())};
            append(&item);
        }
    }
    const char* className() const override { return "ARRAY"; }
    int compareElements(const void* a, const void* b) const override {
        ++comparisons;
        const int first = static_cast<const Item*>(a)->key;
        const int second = static_cast<const Item*>(b)->key;
        return (first > second) - (first < second);
    }
    std::vector<Item> items() const {
        std::vector<Item> all;
        for (unsigned i = 0; i < length(); ++i)
            all.push_back(*static_cast<Item*>((*this)[i]));
        return all;
    }
    mutable unsigned long long comparisons = 0;
};

// The first element is the pivot; scans stop at equal elements.
unsigned long long plainSort(std::vector<Item>& v, int lo, int hi) {
    unsigned long long comparisons = 0;
    const auto compare = [&](int i) {
        ++comparisons;
        return v[i].key - v[lo].key;
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
    if (j > 0 && lo < j - 1) comparisons += plainSort(v, lo, j - 1);
    if (j + 1 < hi) comparisons += plainSort(v, j + 1, hi);
    return comparisons;
}

TEST(qzArraySort, ExchangesAreThoseOfThePlainPartition) {
    std::mt19937 random(7);
    for (int round = 0; round < 400; ++round) {
        SCOPED_TRACE(round);
        std::vector<int> keys(random() % 60);
        const unsigned distinct = 1 + random() % 40;
        for (int& key : keys)
            key = static_cast<int>(random() % distinct);
        ItemArray a(keys);
        std::vector<Item> model = a.items();
        const unsigned long long expected =
            model.size() > 1 ? plainSort(model, 0, static_cast<int>(model.size()) - 1) : 0;
        a.qsort();
        ASSERT_EQ(a.items(), model);
        ASSERT_EQ(a.comparisons, expected);
    }
}

TEST(qzArraySort, SortsOnlyTheRange) {
    ItemArray a({5, 4, 3, 2, 1, 0});
    a.qsort(1, 3);
    std::vector<int> keys;
    for (const Item& item : a.items())
        keys.push_back(item.key);
    EXPECT_EQ(keys, (std::vector<int>{5, 2, 3, 4, 1, 0}));
    a.qsort(2, 0);
    a.qsort(2, 1);
    EXPECT_EQ(a.items()[2].key, 3);
}

// The shapes that drive a first-element pivot into the quadratic, and a large
// recursion with it.
TEST(qzArraySort, NoInputIsQuadratic) {
    const int n = 20000;
    std::vector<int> ascending(n);
    std::iota(ascending.begin(), ascending.end(), 0);
    std::vector<int> descending(ascending.rbegin(), ascending.rend());
    std::vector<int> organPipe(ascending);
    std::reverse(organPipe.begin() + n / 2, organPipe.end());
    const std::vector<int> equal(n, 1);
    std::vector<int> twoRuns(ascending.begin() + n / 2, ascending.end());
    twoRuns.insert(twoRuns.end(), ascending.begin(), ascending.begin() + n / 2);
    for (const std::vector<int>& keys : {ascending, descending, organPipe, equal, twoRuns}) {
        ItemArray a(keys);
        a.qsort();
        // Heapsort takes 2 n log2 n; the splits before it at most 100 n.
        EXPECT_LT(a.comparisons, 140ull * n);
        const std::vector<Item> items = a.items();
        EXPECT_TRUE(std::is_sorted(items.begin(), items.end(),
                                   [](const Item& a, const Item& b) { return a.key < b.key; }));
    }
}

// The typed form may take a faster way to the same result.
template <class Array, class T> void expectByteOrder() {
    std::mt19937 random(3);
    Array fast;
    for (int i = 0; i < 1000; ++i)
        fast.append(static_cast<T>(random() % 300 * 100));
    Array slow(fast);
    fast.qsort();
    static_cast<qzArray&>(slow).qsort();
    for (unsigned i = 0; i < fast.length(); ++i)
        ASSERT_EQ(fast[i], slow[i]);
    for (unsigned i = 1; i < fast.length(); ++i) {
        ASSERT_LE(std::memcmp(&fast[i - 1], &fast[i], sizeof(T)), 0);
    }
}

TEST(qzArraySort, TypedSortsGiveTheVirtualOrder) {
    expectByteOrder<qzIntArray, int>();
    expectByteOrder<qzShortArray, short>();
    expectByteOrder<qzDoubleArray, double>();
}

} // namespace
