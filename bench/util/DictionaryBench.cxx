// Dictionaries beside std::unordered_map with the same hash and key types. Both
// are made for the number of entries they are going to hold.
#include <cstdio>
#include <random>
#include <unordered_map>
#include <vector>

#include <benchmark/benchmark.h>

#include "util/StrStrDictionary.h"
#include "util/StrStrDictionaryIter.h"
#include "xdr/BinaryOTDict.h"
#include "xdr/BinaryOTDictIter.h"

namespace {

struct StrHash {
    std::size_t operator()(const qzStr& s) const { return s.hash(); }
};
struct WordHash {
    std::size_t operator()(unsigned long word) const { return word >> 2; }
};
using StrMap = std::unordered_map<qzStr, qzStr, StrHash>;
using WordMap = std::unordered_map<unsigned long, unsigned long, WordHash>;

// Distinct keys whose first eight characters differ: that is all hash() sees.
std::vector<qzStr> strKeys(std::size_t n) {
    std::mt19937 random(4711);
    std::vector<qzStr> keys;
    for (std::size_t i = 0; i < n; ++i) {
        char text[32];
        std::snprintf(text, sizeof text, "%08x-%u", static_cast<unsigned>(random()),
                      static_cast<unsigned>(i));
        keys.push_back(text);
    }
    return keys;
}

std::vector<unsigned long> wordKeys(std::size_t n) {
    std::mt19937 random(4711);
    std::vector<unsigned long> keys;
    for (std::size_t i = 0; i < n; ++i)
        keys.push_back(random() & ~3ul);
    return keys;
}

// As many chains as entries, a prime's neighbour, so that remainders spread.
unsigned fitting(std::size_t n) { return static_cast<unsigned>(n) | 1; }

void finish(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetComplexityN(state.range(0));
}

void add(qzStrStrDictionary& d, const qzStr& k) { d.add(k, k); }
void add(qzBinaryOTDict& d, unsigned long k) { d.add(k, k); }
template <class Map, class Key> void addTo(Map& m, const Key& k) { m.emplace(k, k); }

std::vector<qzStr> keysFor(const qzStr*, std::size_t n) { return strKeys(n); }
std::vector<unsigned long> keysFor(const unsigned long*, std::size_t n) { return wordKeys(n); }

template <class Dict> void BM_Dict_Insert(benchmark::State& state) {
    const auto keys = keysFor(static_cast<typename Dict::Key*>(nullptr), state.range(0));
    for (auto _ : state) {
        Dict* d = new Dict(fitting(keys.size()));
        for (const auto& key : keys)
            add(*d, key);
        state.PauseTiming();
        delete d;
        state.ResumeTiming();
    }
    finish(state);
}

template <class Map> void BM_Map_Insert(benchmark::State& state) {
    const auto keys = keysFor(static_cast<typename Map::key_type*>(nullptr), state.range(0));
    for (auto _ : state) {
        Map* m = new Map(fitting(keys.size()));
        for (const auto& key : keys)
            addTo(*m, key);
        state.PauseTiming();
        delete m;
        state.ResumeTiming();
    }
    finish(state);
}

template <class Dict> void BM_Dict_Find(benchmark::State& state) {
    const auto keys = keysFor(static_cast<typename Dict::Key*>(nullptr), state.range(0));
    Dict d(fitting(keys.size()));
    for (const auto& key : keys)
        add(d, key);
    for (auto _ : state) {
        for (const auto& key : keys)
            benchmark::DoNotOptimize(d.find(key));
    }
    finish(state);
}

template <class Map> void BM_Map_Find(benchmark::State& state) {
    const auto keys = keysFor(static_cast<typename Map::key_type*>(nullptr), state.range(0));
    Map m(fitting(keys.size()));
    for (const auto& key : keys)
        addTo(m, key);
    for (auto _ : state) {
        for (const auto& key : keys)
            benchmark::DoNotOptimize(m.find(key));
    }
    finish(state);
}

template <class Dict, class Iter> void BM_Dict_Iterate(benchmark::State& state) {
    const auto keys = keysFor(static_cast<typename Dict::Key*>(nullptr), state.range(0));
    Dict d(fitting(keys.size()));
    for (const auto& key : keys)
        add(d, key);
    for (auto _ : state) {
        for (Iter i(d); i.notDone(); ++i)
            benchmark::DoNotOptimize(*i.getValue());
    }
    finish(state);
}

template <class Map> void BM_Map_Iterate(benchmark::State& state) {
    const auto keys = keysFor(static_cast<typename Map::key_type*>(nullptr), state.range(0));
    Map m(fitting(keys.size()));
    for (const auto& key : keys)
        addTo(m, key);
    for (auto _ : state) {
        for (auto& entry : m)
            benchmark::DoNotOptimize(entry.second);
    }
    finish(state);
}

void sizes(benchmark::internal::Benchmark* b) { b->Arg(1000)->Arg(10000)->Arg(100000); }

BENCHMARK_TEMPLATE(BM_Dict_Insert, qzStrStrDictionary)->Apply(sizes);
BENCHMARK_TEMPLATE(BM_Map_Insert, StrMap)->Apply(sizes);
BENCHMARK_TEMPLATE(BM_Dict_Find, qzStrStrDictionary)->Apply(sizes);
BENCHMARK_TEMPLATE(BM_Map_Find, StrMap)->Apply(sizes);
BENCHMARK_TEMPLATE(BM_Dict_Iterate, qzStrStrDictionary, qzStrStrDictionaryIter)->Apply(sizes);
BENCHMARK_TEMPLATE(BM_Map_Iterate, StrMap)->Apply(sizes);

BENCHMARK_TEMPLATE(BM_Dict_Insert, qzBinaryOTDict)->Apply(sizes);
BENCHMARK_TEMPLATE(BM_Map_Insert, WordMap)->Apply(sizes);
BENCHMARK_TEMPLATE(BM_Dict_Find, qzBinaryOTDict)->Apply(sizes);
BENCHMARK_TEMPLATE(BM_Map_Find, WordMap)->Apply(sizes);
BENCHMARK_TEMPLATE(BM_Dict_Iterate, qzBinaryOTDict, qzBinaryOTDictIter)->Apply(sizes);
BENCHMARK_TEMPLATE(BM_Map_Iterate, WordMap)->Apply(sizes);

} // namespace
