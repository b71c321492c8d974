// Strings beside std::string.
#include <string>

#include <benchmark/benchmark.h>

#include "util/Str.h"

namespace {

void finish(benchmark::State& state) {
    state.SetBytesProcessed(state.iterations() * state.range(0));
    state.SetComplexityN(state.range(0));
}

void BM_Str_AppendChar(benchmark::State& state) {
    for (auto _ : state) {
        qzStr s;
        for (int i = 0; i < state.range(0); ++i)
            s.append('x');
        benchmark::DoNotOptimize(s);
    }
    finish(state);
}
BENCHMARK(BM_Str_AppendChar)->RangeMultiplier(8)->Range(8, 1 << 18)->Complexity();

void BM_StdString_AppendChar(benchmark::State& state) {
    for (auto _ : state) {
        std::string s;
        for (int i = 0; i < state.range(0); ++i)
            s.push_back('x');
        benchmark::DoNotOptimize(s);
    }
    finish(state);
}
BENCHMARK(BM_StdString_AppendChar)->RangeMultiplier(8)->Range(8, 1 << 18)->Complexity();

void BM_Str_Copy(benchmark::State& state) {
    const qzStr source(std::string(state.range(0), 'x').c_str());
    for (auto _ : state) {
        qzStr s(source);
        benchmark::DoNotOptimize(s);
    }
    finish(state);
}
BENCHMARK(BM_Str_Copy)->RangeMultiplier(32)->Range(8, 1 << 18);

void BM_StdString_Copy(benchmark::State& state) {
    const std::string source(state.range(0), 'x');
    for (auto _ : state) {
        std::string s(source);
        benchmark::DoNotOptimize(s);
    }
    finish(state);
}
BENCHMARK(BM_StdString_Copy)->RangeMultiplier(32)->Range(8, 1 << 18);

void BM_Str_Equal(benchmark::State& state) {
    const qzStr a(std::string(state.range(0), 'x').c_str());
    const qzStr b(a);
    for (auto _ : state)
        benchmark::DoNotOptimize(a == b);
    finish(state);
}
BENCHMARK(BM_Str_Equal)->RangeMultiplier(32)->Range(8, 1 << 18);

void BM_StdString_Equal(benchmark::State& state) {
    const std::string a(state.range(0), 'x');
    const std::string b(a);
    for (auto _ : state)
        benchmark::DoNotOptimize(a == b);
    finish(state);
}
BENCHMARK(BM_StdString_Equal)->RangeMultiplier(32)->Range(8, 1 << 18);

// The set is searched for in a text that does not hold it; the cost must not
// follow the size of the set, the second argument.
void BM_Str_NextInSet(benchmark::State& state) {
    const qzStr s(std::string(state.range(0), 'x').c_str());
    const std::string set =
        std::string("0123456789,;.:-_#'+*~!\"$%&/()=?").substr(0, state.range(1));
    for (auto _ : state)
        benchmark::DoNotOptimize(s.next(0, set.c_str()));
    finish(state);
}
BENCHMARK(BM_Str_NextInSet)->ArgsProduct({{64, 4096}, {2, 30}});

void BM_StdString_FindFirstOf(benchmark::State& state) {
    const std::string s(state.range(0), 'x');
    const std::string set =
        std::string("0123456789,;.:-_#'+*~!\"$%&/()=?").substr(0, state.range(1));
    for (auto _ : state)
        benchmark::DoNotOptimize(s.find_first_of(set));
    finish(state);
}
BENCHMARK(BM_StdString_FindFirstOf)->ArgsProduct({{64, 4096}, {2, 30}});

// Short texts: what most concatenations are.
void BM_Str_Concatenate(benchmark::State& state) {
    const qzStr directory("/usr/share");
    const qzStr name("dictionary");
    for (auto _ : state) {
        qzStr s(directory | "/" | name | ".txt");
        benchmark::DoNotOptimize(s);
    }
}
BENCHMARK(BM_Str_Concatenate);

void BM_StdString_Concatenate(benchmark::State& state) {
    const std::string directory("/usr/share");
    const std::string name("dictionary");
    for (auto _ : state) {
        std::string s(directory + "/" + name + ".txt");
        benchmark::DoNotOptimize(s);
    }
}
BENCHMARK(BM_StdString_Concatenate);

} // namespace
