// Arrays beside std::vector, and sorting beside std::sort with the same order.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "util/CharArray.h"
#include "util/DoubleArray.h"
#include "util/IntArray.h"
#include "util/ShortArray.h"
#include "util/StrArray.h"

namespace {

void finish(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetComplexityN(state.range(0));
}

void BM_Array_AppendInt(benchmark::State& state) {
    for (auto _ : state) {
        qzIntArray a;
        for (int i = 0; i < state.range(0); ++i)
            a.append(i);
        benchmark::DoNotOptimize(a);
        benchmark::ClobberMemory();
    }
    finish(state);
}
BENCHMARK(BM_Array_AppendInt)->RangeMultiplier(32)->Range(32, 1 << 20)->Complexity();

void BM_Vector_AppendInt(benchmark::State& state) {
    for (auto _ : state) {
        std::vector<int> a;
        for (int i = 0; i < state.range(0); ++i)
            a.push_back(i);
        benchmark::DoNotOptimize(a);
        benchmark::ClobberMemory();
    }
    finish(state);
}
BENCHMARK(BM_Vector_AppendInt)->RangeMultiplier(32)->Range(32, 1 << 20)->Complexity();

void BM_Array_IndexInt(benchmark::State& state) {
    qzIntArray a(static_cast<unsigned>(state.range(0)));
    for (unsigned i = 0; i < a.length(); ++i)
        a[i] = static_cast<int>(i);
    for (auto _ : state) {
        unsigned sum = 0;
        for (unsigned i = 0; i < a.length(); ++i)
            sum += a[i];
        benchmark::DoNotOptimize(sum);
    }
    finish(state);
}
BENCHMARK(BM_Array_IndexInt)->Range(1 << 10, 1 << 16);

void BM_Vector_IndexInt(benchmark::State& state) {
    std::vector<int> a(static_cast<std::size_t>(state.range(0)));
    for (unsigned i = 0; i < a.size(); ++i)
        a[i] = static_cast<int>(i);
    for (auto _ : state) {
        unsigned sum = 0;
        for (unsigned i = 0; i < a.size(); ++i)
            sum += a[i];
        benchmark::DoNotOptimize(sum);
    }
    finish(state);
}
BENCHMARK(BM_Vector_IndexInt)->Range(1 << 10, 1 << 16);

void BM_Array_CopyInt(benchmark::State& state) {
    const qzIntArray source(static_cast<unsigned>(state.range(0)));
    for (auto _ : state) {
        qzIntArray a(source);
        benchmark::DoNotOptimize(a);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0) * sizeof(int));
}
BENCHMARK(BM_Array_CopyInt)->Arg(1 << 10)->Arg(1 << 20);

void BM_Vector_CopyInt(benchmark::State& state) {
    const std::vector<int> source(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        std::vector<int> a(source);
        benchmark::DoNotOptimize(a);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0) * sizeof(int));
}
BENCHMARK(BM_Vector_CopyInt)->Arg(1 << 10)->Arg(1 << 20);

// Searches for what only the last element is.

template <class Array> void BM_Array_Find(benchmark::State& state) {
    Array a(static_cast<unsigned>(state.range(0)));
    std::fill_n(&a[0], a.length(), 1);
    a[a.length() - 1] = 7;
    const typename Array::Element wanted = 7;
    for (auto _ : state)
        benchmark::DoNotOptimize(a.find(wanted));
    finish(state);
}

template <class T> void BM_Vector_Find(benchmark::State& state) {
    std::vector<T> a(static_cast<std::size_t>(state.range(0)), 1);
    a.back() = 7;
    const T wanted = 7;
    for (auto _ : state)
        benchmark::DoNotOptimize(std::find(a.begin(), a.end(), wanted));
    finish(state);
}

#define FIND(Array, T)                                                                             \
    BENCHMARK_TEMPLATE(BM_Array_Find, Array)->Arg(8)->Arg(1000)->Arg(100000);                      \
    BENCHMARK_TEMPLATE(BM_Vector_Find, T)->Arg(8)->Arg(1000)->Arg(100000)
FIND(qzCharArray, char);
FIND(qzShortArray, short);
FIND(qzIntArray, int);
FIND(qzDoubleArray, double);

// Sorting: the same elements in every round, by the bytes of their memory.

enum class Shape { random, ascending, descending, constant, nearly };

// As many values as asked for, their bytes in the order that the shape says.
template <class T> std::vector<T> shaped(Shape shape, std::size_t n) {
    std::mt19937 random(12345);
    std::vector<T> values(n);
    for (T& value : values)
        value = static_cast<T>(shape == Shape::constant ? 7 : static_cast<int>(random()));
    const auto before = [](const T& a, const T& b) { return std::memcmp(&a, &b, sizeof a) < 0; };
    if (shape != Shape::random) std::sort(values.begin(), values.end(), before);
    if (shape == Shape::descending) std::reverse(values.begin(), values.end());
    for (std::size_t i = 0; shape == Shape::nearly && i < n / 100; ++i)
        std::swap(values[random() % n], values[random() % n]);
    return values;
}

template <class Array, Shape shape> void BM_Array_Sort(benchmark::State& state) {
    using T = typename Array::Element;
    const std::vector<T> source = shaped<T>(shape, state.range(0));
    Array a(static_cast<unsigned>(source.size()));
    for (auto _ : state) {
        state.PauseTiming();
        std::copy(source.begin(), source.end(), &a[0]);
        state.ResumeTiming();
        a.qsort();
        benchmark::DoNotOptimize(a);
    }
    finish(state);
}

template <class T, Shape shape> void BM_Std_Sort(benchmark::State& state) {
    const std::vector<T> source = shaped<T>(shape, state.range(0));
    std::vector<T> a(source.size());
    for (auto _ : state) {
        state.PauseTiming();
        std::copy(source.begin(), source.end(), a.begin());
        state.ResumeTiming();
        std::sort(a.begin(), a.end(),
                  [](const T& x, const T& y) { return std::memcmp(&x, &y, sizeof x) < 0; });
        benchmark::DoNotOptimize(a);
    }
    finish(state);
}

#define SORT(Array, T, shape)                                                                      \
    BENCHMARK_TEMPLATE(BM_Array_Sort, Array, Shape::shape)                                         \
        ->RangeMultiplier(10)                                                                      \
        ->Range(10, 1000000)                                                                       \
        ->Unit(benchmark::kMicrosecond);                                                           \
    BENCHMARK_TEMPLATE(BM_Std_Sort, T, Shape::shape)                                               \
        ->RangeMultiplier(10)                                                                      \
        ->Range(10, 1000000)                                                                       \
        ->Unit(benchmark::kMicrosecond)
SORT(qzIntArray, int, random);
SORT(qzIntArray, int, ascending);
SORT(qzIntArray, int, descending);
SORT(qzIntArray, int, constant);
SORT(qzIntArray, int, nearly);
SORT(qzCharArray, char, random);
SORT(qzShortArray, short, random);
SORT(qzDoubleArray, double, random);

// Strings are moved as raw bytes by the sort, so that each round can begin with
// the same ones in the same places.

enum class Texts { words, paths, sortedWords };

std::vector<std::string> randomTexts(Texts texts, std::size_t n) {
    std::mt19937 random(54321);
    std::vector<std::string> made;
    for (std::size_t i = 0; i < n; ++i) {
        std::string text = texts == Texts::paths ? "/usr/share/dictionaries/" : "";
        for (unsigned length = 4 + random() % 9; length; --length)
            text += static_cast<char>('a' + random() % 26);
        made.push_back(text);
    }
    if (texts == Texts::sortedWords) {
        std::sort(made.begin(), made.end());
        made.erase(std::unique(made.begin(), made.end()), made.end());
    }
    return made;
}

template <Texts texts> void BM_Array_SortStrings(benchmark::State& state) {
    qzStrArray a;
    for (const std::string& text : randomTexts(texts, state.range(0)))
        a.append(text.c_str());
    const std::size_t bytes = a.length() * sizeof(qzStr);
    std::vector<char> source(bytes);
    std::memcpy(source.data(), a.qzArray::operator[](0), bytes);
    for (auto _ : state) {
        state.PauseTiming();
        std::memcpy(a.qzArray::operator[](0), source.data(), bytes);
        state.ResumeTiming();
        a.qsort();
        benchmark::ClobberMemory();
    }
    finish(state);
}

template <Texts texts> void BM_Std_SortStrings(benchmark::State& state) {
    std::vector<char*> source;
    for (const std::string& text : randomTexts(texts, state.range(0)))
        source.push_back(strdup(text.c_str()));
    std::vector<char*> a(source);
    for (auto _ : state) {
        state.PauseTiming();
        std::copy(source.begin(), source.end(), a.begin());
        state.ResumeTiming();
        std::sort(a.begin(), a.end(),
                  [](const char* x, const char* y) { return std::strcmp(x, y) < 0; });
        benchmark::ClobberMemory();
    }
    finish(state);
    for (char* text : source)
        std::free(text);
}

#define SORT_STRINGS(texts)                                                                        \
    BENCHMARK_TEMPLATE(BM_Array_SortStrings, Texts::texts)                                         \
        ->RangeMultiplier(10)                                                                      \
        ->Range(10, 1000000)                                                                       \
        ->Unit(benchmark::kMicrosecond);                                                           \
    BENCHMARK_TEMPLATE(BM_Std_SortStrings, Texts::texts)                                           \
        ->RangeMultiplier(10)                                                                      \
        ->Range(10, 1000000)                                                                       \
        ->Unit(benchmark::kMicrosecond)
SORT_STRINGS(words);
SORT_STRINGS(paths);
SORT_STRINGS(sortedWords);

} // namespace
