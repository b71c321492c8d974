// Arrays beside std::vector and the C library's qsort.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>

#include "util/IntArray.h"
#include "util/StrArray.h"

namespace {

std::vector<int> randomInts(std::size_t n) {
    std::mt19937 random(12345);
    std::vector<int> values(n);
    for (int& value : values)
        value = static_cast<int>(random());
    return values;
}

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

// Sorting: the same elements in every round, by the bytes of their memory.

qzIntArray toArray(const std::vector<int>& values) {
    qzIntArray a;
    for (int value : values)
        a.append(value);
    return a;
}

void BM_Array_Qsort(benchmark::State& state) {
    const qzIntArray source = toArray(randomInts(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        qzIntArray a(source);
        state.ResumeTiming();
        a.qsort();
        benchmark::DoNotOptimize(a);
    }
    finish(state);
}
BENCHMARK(BM_Array_Qsort)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMicrosecond);

// Through the base class: a virtual comparison per step.
void BM_Array_QsortVirtual(benchmark::State& state) {
    const qzIntArray source = toArray(randomInts(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        qzIntArray a(source);
        state.ResumeTiming();
        static_cast<qzArray&>(a).qsort();
        benchmark::DoNotOptimize(a);
    }
    finish(state);
}
BENCHMARK(BM_Array_QsortVirtual)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMicrosecond);

int compareBytes(const void* a, const void* b) { return std::memcmp(a, b, sizeof(int)); }

void BM_C_Qsort(benchmark::State& state) {
    const std::vector<int> source = randomInts(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<int> a(source);
        state.ResumeTiming();
        std::qsort(a.data(), a.size(), sizeof(int), compareBytes);
        benchmark::DoNotOptimize(a);
    }
    finish(state);
}
BENCHMARK(BM_C_Qsort)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMicrosecond);

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

} // namespace
