// Sorting, against the plain recursive form of the same partition.
#include <algorithm>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "util/StrArray.h"

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

// Elements that compare as plain bytes take faster ways to the same bytes, by
// their size, number and order.
template <unsigned size> struct Bytes {
    unsigned char bytes[size];
    bool operator<(const Bytes& other) const { return std::memcmp(bytes, other.bytes, size) < 0; }
};

template <unsigned size> struct BytesArray : qzTypedArray<BytesArray<size>, Bytes<size>> {
    using qzTypedArray<BytesArray<size>, Bytes<size>>::qzTypedArray;
};

template <unsigned size>
void expectByteOrder(std::mt19937& random, unsigned length, unsigned values, unsigned shape) {
    using Element = Bytes<size>;
    std::vector<Element> model(length);
    for (Element& element : model)
        for (unsigned char& byte : element.bytes)
            byte = static_cast<unsigned char>(255 - random() % values);
    if (shape) std::sort(model.begin(), model.end());
    if (shape == 2) std::reverse(model.begin(), model.end());
    if (shape == 3 && length) model.back() = model.front();
    BytesArray<size> a;
    for (const Element& element : model)
        a.append(element);
    const unsigned start = random() % (length / 4 + 1);
    const unsigned count = length - start - random() % (length / 4 + 1);
    std::sort(model.begin() + start, model.begin() + start + count);
    a.qsort(start, count);
    for (unsigned i = 0; i < length; ++i)
        ASSERT_EQ(std::memcmp(&a[i], &model[i], size), 0) << i << " of " << length;
    if (length) {
        const auto hit = std::find_if(model.begin() + start, model.end(), [&](const Element& e) {
            return !std::memcmp(&e, &model.back(), size);
        });
        ASSERT_EQ(a.find(model.back(), start), hit - model.begin());
    }
}

template <unsigned... sizes> void expectByteOrders(std::integer_sequence<unsigned, sizes...>) {
    std::mt19937 random(3);
    for (unsigned length : {0u, 1u, 2u, 31u, 65u, 300u, 3000u}) {
        for (unsigned values : {1u, 2u, 256u}) {
            for (unsigned shape : {0u, 1u, 2u, 3u})
                (expectByteOrder<sizes + 1>(random, length, values, shape), ...);
        }
    }
}

TEST(qzArraySort, PlainElementsOfEverySizeComeOutInByteOrder) {
    expectByteOrders(std::make_integer_sequence<unsigned, 17>());
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
        ASSERT_TRUE(count == 0 || plain[start] <= plain[start + count - 1]);
    }
}

} // namespace
