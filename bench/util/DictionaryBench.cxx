// Dictionaries and sets beside the hash tables that a program would take
// otherwise, each with the string class that goes with it and nothing reserved.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <malloc.h>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <absl/container/flat_hash_map.h>
#include <absl/container/flat_hash_set.h>
#include <benchmark/benchmark.h>
#include <boost/unordered_map.hpp>
#include <boost/unordered_set.hpp>
#include <glib.h>

#include "util/StrSetIter.h"
#include "util/StrStrDictionaryIter.h"
#include "xdr/BinaryOTDictIter.h"

namespace {

// The keys: distinct, in no order; those with an odd place are looked for in vain.

struct Words {
    using Unit = std::string;
    static const unsigned rounds = 1;
    static std::vector<Unit> make(std::size_t n) {
        std::mt19937 random(4711);
        std::unordered_set<std::string> seen;
        std::vector<Unit> words;
        while (words.size() < n) {
            std::string word;
            for (unsigned left = 4 + random() % 8; left > 0; --left)
                word += static_cast<char>('a' + random() % 26);
            if (seen.insert(word).second) words.push_back(word);
        }
        return words;
    }
};

struct Paths {
    using Unit = std::string;
    static std::vector<Unit> make(std::size_t n) {
        std::vector<Unit> paths = Words::make(n);
        for (std::size_t i = 0; i < n; ++i)
            paths[i] =
                "/usr/share/projects/library/" + paths[i / 16 * 16] + '/' + paths[i] + ".txt";
        return paths;
    }
};

struct Ints {
    using Unit = unsigned long;
    static std::vector<Unit> make(std::size_t n) {
        std::mt19937 random(4711);
        std::unordered_set<Unit> seen;
        std::vector<Unit> ints;
        while (ints.size() < n) {
            const Unit i = random() & ~3ul; // as addresses
            if (seen.insert(i).second) ints.push_back(i);
        }
        return ints;
    }
};

template <class T> T convert(const std::string& text) { return T(text.c_str(), text.size()); }
template <> inline const char* convert<const char*>(const std::string& text) {
    return text.c_str();
}
template <> inline qzStr convert<qzStr>(const std::string& text) { return qzStr(text.c_str()); }
template <> inline QByteArray convert<QByteArray>(const std::string& text) {
    return QByteArray(text.data(), static_cast<int>(text.size()));
}
template <class T> T convert(unsigned long word) { return word; }

// The tables. A set takes the key for the value, too.

template <class D, class I> struct OurDictionary {
    using Key = typename D::Key;
    D table;
    void add(const Key& key) { table.add(key, key); }
    const void* find(const Key& key) const { return table.find(key); }
    void remove(const Key& key) { table.remove(key); }
    template <class Visit> void each(Visit visit) {
        for (I i(table); i.notDone(); ++i)
            visit(*i.getValue());
    }
};

struct OurSet {
    using Key = qzStr;
    qzStrSet table;
    void add(const Key& key) { table.add(key); }
    const void* find(const Key& key) const { return table.find(key); }
    void remove(const Key& key) { table.remove(key); }
    template <class Visit> void each(Visit visit) {
        for (qzStrSetIter i(table); i.notDone(); ++i)
            visit(*i.getKey());
    }
};

template <class M> struct Map {
    using Key = typename M::key_type;
    M table;
    void add(const Key& key) { table.emplace(key, key); }
    bool find(const Key& key) const { return table.find(key) != table.end(); }
    void remove(const Key& key) { table.erase(key); }
    template <class Visit> void each(Visit visit) {
        for (auto& entry : table)
            visit(entry.second);
    }
};

template <class S> struct Set {
    using Key = typename S::key_type;
    S table;
    void add(const Key& key) { table.insert(key); }
    bool find(const Key& key) const { return table.find(key) != table.end(); }
    void remove(const Key& key) { table.erase(key); }
    template <class Visit> void each(Visit visit) {
        for (const auto& key : table)
            visit(key);
    }
};

// As the others the table has texts of its own.
QByteArray owned(const QByteArray& text) { return QByteArray(text.data(), text.size()); }
unsigned long owned(unsigned long word) { return word; }

template <class K> struct QtMap {
    using Key = K;
    QHash<K, K> table;
    void add(const Key& key) { table.insert(owned(key), owned(key)); }
    bool find(const Key& key) const { return table.constFind(key) != table.constEnd(); }
    void remove(const Key& key) { table.remove(key); }
    template <class Visit> void each(Visit visit) {
        for (auto& value : table)
            visit(value);
    }
};

template <class K> struct QtSet {
    using Key = K;
    QSet<K> table;
    void add(const Key& key) { table.insert(owned(key)); }
    bool find(const Key& key) const { return table.contains(key); }
    void remove(const Key& key) { table.remove(key); }
    template <class Visit> void each(Visit visit) {
        for (const auto& key : qAsConst(table))
            visit(key);
    }
};

// Owns copies of its keys and values, as the others do.
struct GLibMap {
    using Key = const char*;
    GHashTable* table = g_hash_table_new_full(g_str_hash, g_str_equal, std::free, std::free);
    ~GLibMap() { g_hash_table_destroy(table); }
    void add(Key key) { g_hash_table_insert(table, strdup(key), strdup(key)); }
    const void* find(Key key) const { return g_hash_table_lookup(table, key); }
    void remove(Key key) { g_hash_table_remove(table, key); }
    template <class Visit> void each(Visit visit) {
        GHashTableIter iter;
        void *key, *value;
        g_hash_table_iter_init(&iter, table);
        while (g_hash_table_iter_next(&iter, &key, &value))
            visit(*static_cast<char*>(value));
    }
};

struct GLibSet : GLibMap {
    GLibSet() {
        g_hash_table_destroy(table);
        table = g_hash_table_new_full(g_str_hash, g_str_equal, std::free, nullptr);
    }
    void add(Key key) { g_hash_table_add(table, strdup(key)); }
};

struct GLibInts {
    using Key = unsigned long;
    GHashTable* table = g_hash_table_new(g_direct_hash, g_direct_equal);
    ~GLibInts() { g_hash_table_destroy(table); }
    static void* pointer(Key key) { return reinterpret_cast<void*>(key); }
    void add(Key key) { g_hash_table_insert(table, pointer(key), pointer(key)); }
    bool find(Key key) const {
        return g_hash_table_lookup_extended(table, pointer(key), nullptr, nullptr);
    }
    void remove(Key key) { g_hash_table_remove(table, pointer(key)); }
    template <class Visit> void each(Visit visit) {
        GHashTableIter iter;
        void *key, *value;
        g_hash_table_iter_init(&iter, table);
        while (g_hash_table_iter_next(&iter, &key, &value))
            visit(value);
    }
};

// Half of the keys are for the table; each order is another.
template <class Table, class Keys> struct Workload {
    using Key = typename Table::Key;
    explicit Workload(std::size_t n) : units(Keys::make(2 * n)) {
        for (std::size_t i = 0; i < 2 * n; ++i)
            (i % 2 ? absent : present).push_back(convert<Key>(units[i]));
        std::vector<std::size_t> order(n);
        std::iota(order.begin(), order.end(), 0);
        std::shuffle(order.begin(), order.end(), std::mt19937(17));
        for (const std::size_t i : order)
            shuffled.push_back(convert<Key>(units[2 * i]));
    }
    void fill(Table& table) const {
        for (const Key& key : present)
            table.add(key);
    }

    std::vector<typename Keys::Unit> units; // which keys may point into
    std::vector<Key> present, absent, shuffled;
};

void finish(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// Small tables are made many at a time: a pause takes longer than they do.
template <class Table, class Keys> void BM_Insert(benchmark::State& state) {
    const Workload<Table, Keys> work(state.range(0));
    const std::size_t together = std::max<std::size_t>(1, 10000 / work.present.size());
    for (auto _ : state) {
        state.PauseTiming();
        auto tables = std::make_unique<Table[]>(together);
        state.ResumeTiming();
        for (std::size_t i = 0; i < together; ++i)
            work.fill(tables[i]);
        state.PauseTiming();
        tables.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * together * state.range(0));
}

template <class Table, class Keys> void BM_Remove(benchmark::State& state) {
    const Workload<Table, Keys> work(state.range(0));
    const std::size_t together = std::max<std::size_t>(1, 10000 / work.present.size());
    for (auto _ : state) {
        state.PauseTiming();
        auto tables = std::make_unique<Table[]>(together);
        for (std::size_t i = 0; i < together; ++i)
            work.fill(tables[i]);
        state.ResumeTiming();
        for (std::size_t i = 0; i < together; ++i)
            for (const auto& key : work.shuffled)
                tables[i].remove(key);
        state.PauseTiming();
        tables.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * together * state.range(0));
}

template <class Table, class Keys> void BM_Hit(benchmark::State& state) {
    const Workload<Table, Keys> work(state.range(0));
    Table table;
    work.fill(table);
    for (auto _ : state) {
        for (const auto& key : work.shuffled)
            benchmark::DoNotOptimize(table.find(key));
    }
    finish(state);
}

template <class Table, class Keys> void BM_Miss(benchmark::State& state) {
    const Workload<Table, Keys> work(state.range(0));
    Table table;
    work.fill(table);
    for (auto _ : state) {
        for (const auto& key : work.absent)
            benchmark::DoNotOptimize(table.find(key));
    }
    finish(state);
}

template <class Table, class Keys> void BM_Iterate(benchmark::State& state) {
    const Workload<Table, Keys> work(state.range(0));
    Table table;
    work.fill(table);
    for (auto _ : state)
        table.each([](auto& value) { benchmark::DoNotOptimize(value); });
    finish(state);
}

// Not a time: what malloc has given out, an entry.
template <class Table, class Keys> void BM_Memory(benchmark::State& state) {
    const Workload<Table, Keys> work(state.range(0));
    for (auto _ : state) {
        const auto before = mallinfo2();
        Table table;
        work.fill(table);
        const auto after = mallinfo2();
        state.counters["memory"] =
            double(after.uordblks + after.hblkhd - before.uordblks - before.hblkhd) /
            double(state.range(0));
    }
}

template <class K> using AbslMap = absl::flat_hash_map<K, K>;
template <class K> using StdMap = std::unordered_map<K, K>;
template <class K> using BoostMap = boost::unordered_map<K, K>;

using StrDict = OurDictionary<qzStrStrDictionary, qzStrStrDictionaryIter>;
using StdDict = Map<StdMap<std::string>>;
using BoostDict = Map<BoostMap<std::string>>;
using AbslDict = Map<AbslMap<std::string>>;
using QtDict = QtMap<QByteArray>;
using StdSet = Set<std::unordered_set<std::string>>;
using BoostSet = Set<boost::unordered_set<std::string>>;
using AbslSet = Set<absl::flat_hash_set<std::string>>;
using QtStrSet = QtSet<QByteArray>;
using WordDict = OurDictionary<qzBinaryOTDict, qzBinaryOTDictIter>;
using StdInts = Map<StdMap<unsigned long>>;
using BoostInts = Map<BoostMap<unsigned long>>;
using AbslInts = Map<AbslMap<unsigned long>>;
using QtInts = QtMap<unsigned long>;

#define ALL_OF(TABLE, KEYS)                                                                        \
    BENCHMARK_TEMPLATE(BM_Hit, TABLE, KEYS)->Apply(sizes);                                         \
    BENCHMARK_TEMPLATE(BM_Miss, TABLE, KEYS)->Apply(sizes);                                        \
    BENCHMARK_TEMPLATE(BM_Insert, TABLE, KEYS)->Apply(sizes);                                      \
    BENCHMARK_TEMPLATE(BM_Remove, TABLE, KEYS)->Apply(sizes);                                      \
    BENCHMARK_TEMPLATE(BM_Iterate, TABLE, KEYS)->Apply(sizes);                                     \
    BENCHMARK_TEMPLATE(BM_Memory, TABLE, KEYS)->Apply(sizes)->Iterations(1)

void sizes(benchmark::internal::Benchmark* b) { b->Arg(100)->Arg(1000)->Arg(100000); }

ALL_OF(StrDict, Words);
ALL_OF(StdDict, Words);
ALL_OF(BoostDict, Words);
ALL_OF(AbslDict, Words);
ALL_OF(QtDict, Words);
ALL_OF(GLibMap, Words);

ALL_OF(StrDict, Paths);
ALL_OF(StdDict, Paths);
ALL_OF(BoostDict, Paths);
ALL_OF(AbslDict, Paths);
ALL_OF(QtDict, Paths);
ALL_OF(GLibMap, Paths);

ALL_OF(OurSet, Words);
ALL_OF(StdSet, Words);
ALL_OF(BoostSet, Words);
ALL_OF(AbslSet, Words);
ALL_OF(QtStrSet, Words);
ALL_OF(GLibSet, Words);

ALL_OF(WordDict, Ints);
ALL_OF(StdInts, Ints);
ALL_OF(BoostInts, Ints);
ALL_OF(AbslInts, Ints);
ALL_OF(QtInts, Ints);
ALL_OF(GLibInts, Ints);

} // namespace
