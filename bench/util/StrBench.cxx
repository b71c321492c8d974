// Strings beside std::string, QByteArray, GString, Abseil and the C library's
// own functions.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <QByteArray>
#include <QList>
#include <QStringBuilder>
#include <absl/strings/str_cat.h>
#include <absl/strings/str_format.h>
#include <absl/strings/str_split.h>
#include <benchmark/benchmark.h>
#include <glib.h>

#include "util/StackBuffer.h"
#include "util/Str.h"

namespace {

std::string letters(std::size_t n) {
    std::string made;
    for (std::size_t i = 0; i < n; ++i)
        made += static_cast<char>('a' + i % 23);
    return made;
}

struct Qz {
    using String = qzStr;
    static String make(const std::string& s) { return qzStr(s.data(), s.size()); }
    static void clear(String&) {}
    static String copy(const String& s) { return s; }
    static bool equal(const String& a, const String& b) { return a == b; }
    static unsigned next(const String& s, char c) { return s.next(0, c); }
    static unsigned nextR(const String& s, char c) { return s.nextR(s.length(), c); }
    static unsigned next(const String& s, const char* set) { return s.next(0, set); }
    static unsigned skip(const String& s, const char* set) { return s.skip(0, set); }
    static String join(const String& a, const String& b, const String& c) { return a | b | c; }
    static String join4(const String& a, const String& b) { return a | "/" | b | ".txt"; }
    static void append(String& s, char c) { s.append(c); }
    static void append(String& s, const char* text, unsigned n) { s.append(text, n); }
    template <class Take> static void split(const String& s, char c, Take take) {
        for (unsigned pos = 0; pos < s.length();)
            take(s.token(pos, c));
    }
    template <class Take> static void split(const String& s, const char* set, Take take) {
        for (unsigned pos = 0; pos < s.length();)
            take(s.token(pos, set));
    }
    static void format(String& s, const char* name, int i, double d) {
        s.format("%s: %d of %.2f", name, i, d);
    }
};

struct Std {
    using String = std::string;
    static String make(const std::string& s) { return s; }
    static void clear(String&) {}
    static String copy(const String& s) { return s; }
    static bool equal(const String& a, const String& b) { return a == b; }
    static std::size_t next(const String& s, char c) { return s.find(c); }
    static std::size_t nextR(const String& s, char c) { return s.rfind(c); }
    static std::size_t next(const String& s, const char* set) { return s.find_first_of(set); }
    static std::size_t skip(const String& s, const char* set) { return s.find_first_not_of(set); }
    static String join(const String& a, const String& b, const String& c) { return a + b + c; }
    static String join4(const String& a, const String& b) { return a + "/" + b + ".txt"; }
    static void append(String& s, char c) { s.push_back(c); }
    static void append(String& s, const char* text, unsigned n) { s.append(text, n); }
    template <class Take> static void split(const String& s, char c, Take take) {
        for (std::size_t pos = 0; pos < s.size();) {
            const std::size_t end = std::min(s.find(c, pos), s.size());
            take(s.substr(pos, end - pos));
            pos = end + 1;
        }
    }
    template <class Take> static void split(const String& s, const char* set, Take take) {
        for (std::size_t pos = 0; pos < s.size();) {
            const std::size_t end = std::min(s.find_first_of(set, pos), s.size());
            take(s.substr(pos, end - pos));
            pos = end + 1;
        }
    }
};

struct Qt5 {
    using String = QByteArray;
    static String make(const std::string& s) { return QByteArray(s.data(), s.size()); }
    static void clear(String&) {}
    static bool equal(const String& a, const String& b) { return a == b; }
    static String join(const String& a, const String& b, const String& c) { return a % b % c; }
    static String join4(const String& a, const String& b) { return a % "/" % b % ".txt"; }
    static void append(String& s, char c) { s.append(c); }
    static void append(String& s, const char* text, unsigned n) { s.append(text, n); }
    template <class Take> static void split(const String& s, char c, Take take) {
        for (const QByteArray& token : s.split(c))
            take(token);
    }
};

struct GLib {
    using String = GString*;
    static String make(const std::string& s) { return g_string_new_len(s.data(), s.size()); }
    static void clear(String& s) { g_string_free(s, TRUE); }
    static String copy(const String& s) { return g_string_new_len(s->str, s->len); }
    static bool equal(const String& a, const String& b) { return g_string_equal(a, b); }
    static String join(const String& a, const String& b, const String& c) {
        GString* s = g_string_new_len(a->str, a->len);
        g_string_append_len(s, b->str, b->len);
        return g_string_append_len(s, c->str, c->len);
    }
    static String join4(const String& a, const String& b) {
        GString* s = g_string_new_len(a->str, a->len);
        g_string_append_c(s, '/');
        g_string_append_len(s, b->str, b->len);
        return g_string_append(s, ".txt");
    }
    static void append(String& s, char c) { g_string_append_c(s, c); }
    static void append(String& s, const char* text, unsigned n) { g_string_append_len(s, text, n); }
    template <class Take> static void split(const String& s, char c, Take take) {
        const char set[] = {c, 0};
        char** tokens = g_strsplit(s->str, set, -1);
        for (char** token = tokens; *token; ++token)
            take(*token);
        g_strfreev(tokens);
    }
    template <class Take> static void split(const String& s, const char* set, Take take) {
        char** tokens = g_strsplit_set(s->str, set, -1);
        for (char** token = tokens; *token; ++token)
            take(*token);
        g_strfreev(tokens);
    }
    static void format(String& s, const char* name, int i, double d) {
        g_string_printf(s, "%s: %d of %.2f", name, i, d);
    }
};

struct Absl : Std {
    static String join(const String& a, const String& b, const String& c) {
        return absl::StrCat(a, b, c);
    }
    static String join4(const String& a, const String& b) {
        return absl::StrCat(a, "/", b, ".txt");
    }
    template <class Take> static void split(const String& s, char c, Take take) {
        for (absl::string_view token : absl::StrSplit(s, c))
            take(std::string(token));
    }
    template <class Take> static void split(const String& s, const char* set, Take take) {
        for (absl::string_view token : absl::StrSplit(s, absl::ByAnyChar(set)))
            take(std::string(token));
    }
    static void format(String& s, const char* name, int i, double d) {
        s = absl::StrFormat("%s: %d of %.2f", name, i, d);
    }
};

// Blocks with their length, handled by the C library alone.
struct C {
    struct String {
        std::size_t size;
        char* text;
    };
    static String make(const std::string& s) {
        String made = {s.size(), static_cast<char*>(std::malloc(s.size() + 1))};
        std::memcpy(made.text, s.c_str(), s.size() + 1);
        return made;
    }
    static void clear(String& s) { std::free(s.text); }
    static String copy(const String& s) {
        String made = {s.size, static_cast<char*>(std::malloc(s.size + 1))};
        std::memcpy(made.text, s.text, s.size + 1);
        return made;
    }
    static bool equal(const String& a, const String& b) {
        return a.size == b.size && std::memcmp(a.text, b.text, a.size) == 0;
    }
    static const void* next(const String& s, char c) { return std::memchr(s.text, c, s.size); }
    static const void* nextR(const String& s, char c) { return memrchr(s.text, c, s.size); }
    static std::size_t next(const String& s, const char* set) { return std::strcspn(s.text, set); }
    static std::size_t skip(const String& s, const char* set) { return std::strspn(s.text, set); }
};

template <class L> void BM_Str_Copy(benchmark::State& state) {
    auto source = L::make(letters(state.range(0)));
    for (auto _ : state) {
        auto s = L::copy(source);
        benchmark::DoNotOptimize(s);
        L::clear(s);
    }
    L::clear(source);
}

template <class L> void BM_Str_Equal(benchmark::State& state) {
    auto a = L::make(letters(state.range(0)));
    auto b = L::make(letters(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(a);
        benchmark::DoNotOptimize(L::equal(a, b));
    }
    L::clear(a);
    L::clear(b);
}

// Three strings that make one of so many characters.
template <class L> void BM_Str_Join(benchmark::State& state) {
    const unsigned n = state.range(0);
    auto a = L::make(letters(n / 3));
    auto b = L::make(letters(n / 4));
    auto c = L::make(letters(n - n / 3 - n / 4));
    for (auto _ : state) {
        auto s = L::join(a, b, c);
        benchmark::DoNotOptimize(s);
        L::clear(s);
    }
    L::clear(a);
    L::clear(b);
    L::clear(c);
}

// The same with literals: a path of 25 characters.
template <class L> void BM_Str_JoinPath(benchmark::State& state) {
    auto directory = L::make("/usr/share");
    auto name = L::make("dictionary");
    for (auto _ : state) {
        auto s = L::join4(directory, name);
        benchmark::DoNotOptimize(s);
        L::clear(s);
    }
    L::clear(directory);
    L::clear(name);
}

// 1,000 tokens of the given length, each a string of its own.
std::string sentence(unsigned length) {
    std::string made;
    for (int i = 0; i < 1000; ++i)
        made += letters(length) + ',';
    return made;
}

template <class L> void BM_Str_Tokens(benchmark::State& state) {
    auto text = L::make(sentence(state.range(0)));
    for (auto _ : state)
        L::split(text, ',', [](const auto& token) { benchmark::DoNotOptimize(token); });
    L::clear(text);
    state.SetItemsProcessed(state.iterations() * 1000);
}

template <class L> void BM_Str_TokensOfSet(benchmark::State& state) {
    auto text = L::make(sentence(state.range(0)));
    for (auto _ : state)
        L::split(text, ",;: ", [](const auto& token) { benchmark::DoNotOptimize(token); });
    L::clear(text);
    state.SetItemsProcessed(state.iterations() * 1000);
}

// Blocks of many sizes with gaps between them, so that what grows has to move.
class AgedHeap {
  public:
    AgedHeap() {
        std::mt19937 random(99);
        for (int i = 0; i < 40000; ++i)
            blocks.push_back(std::malloc(16 + random() % 2000));
        for (int i = 0; i < 20000; ++i) {
            void*& block = blocks[random() % blocks.size()];
            std::free(block);
            block = nullptr;
        }
    }
    ~AgedHeap() {
        for (void* block : blocks)
            std::free(block);
    }

  private:
    std::vector<void*> blocks;
};

template <class L> void appendChars(benchmark::State& state) {
    for (auto _ : state) {
        auto s = L::make("");
        for (int i = 0; i < state.range(0); ++i)
            L::append(s, 'x');
        benchmark::DoNotOptimize(s);
        L::clear(s);
    }
    state.SetComplexityN(state.range(0));
}

template <class L> void BM_Str_AppendChar(benchmark::State& state) { appendChars<L>(state); }

template <class L> void BM_Str_AppendCharAged(benchmark::State& state) {
    const AgedHeap aged;
    appendChars<L>(state);
}

template <class L> void BM_Str_AppendText(benchmark::State& state) {
    for (auto _ : state) {
        auto s = L::make("");
        for (int i = 0; i < state.range(0); i += 10)
            L::append(s, "0123456789", 10);
        benchmark::DoNotOptimize(s);
        L::clear(s);
    }
    state.SetComplexityN(state.range(0));
}

// The same text into a stack buffer, and from there into a string.
void BM_Str_CollectChars(benchmark::State& state) {
    for (auto _ : state) {
        qzStackBuffer buffer(static_cast<unsigned>(state.range(0)));
        for (int i = 0; i < state.range(0); ++i)
            buffer.addc('x');
        qzStr s(buffer.data(), buffer.length());
        benchmark::DoNotOptimize(s);
    }
}
BENCHMARK(BM_Str_CollectChars)->RangeMultiplier(8)->Range(8, 1 << 18);

template <class L> void BM_Str_Format(benchmark::State& state) {
    auto s = L::make("");
    int i = 0;
    for (auto _ : state) {
        L::format(s, "dictionary", ++i & 1023, 0.25);
        benchmark::DoNotOptimize(s);
    }
    L::clear(s);
}

template <> void BM_Str_Format<C>(benchmark::State& state) {
    char s[64];
    int i = 0;
    for (auto _ : state) {
        std::snprintf(s, sizeof s, "%s: %d of %.2f", "dictionary", ++i & 1023, 0.25);
        benchmark::DoNotOptimize(s);
    }
}

// Searches for what only the last byte of a text is, for all libraries that can.

const char* const punctuation = "0123456789,;.:-_#'+*~!\"$%&/()=?";

template <class L> void BM_Str_Next(benchmark::State& state) {
    auto s = L::make(std::string(state.range(0) - 1, 'x') + '?');
    for (auto _ : state) {
        benchmark::DoNotOptimize(s);
        benchmark::DoNotOptimize(L::next(s, '?'));
    }
    L::clear(s);
}

template <class L> void BM_Str_NextR(benchmark::State& state) {
    auto s = L::make('?' + std::string(state.range(0) - 1, 'x'));
    for (auto _ : state) {
        benchmark::DoNotOptimize(s);
        benchmark::DoNotOptimize(L::nextR(s, '?'));
    }
    L::clear(s);
}

// range(1): how large the set is.
template <class L> void BM_Str_NextInSet(benchmark::State& state) {
    auto s = L::make(std::string(state.range(0) - 1, 'x') + '0');
    const std::string set(punctuation, state.range(1));
    for (auto _ : state) {
        benchmark::DoNotOptimize(s);
        benchmark::DoNotOptimize(L::next(s, set.c_str()));
    }
    L::clear(s);
}

template <class L> void BM_Str_SkipSet(benchmark::State& state) {
    const std::string set(punctuation, state.range(1));
    std::string text;
    for (int i = 1; i < state.range(0); ++i)
        text += set[i % set.size()];
    auto s = L::make(text + 'x');
    for (auto _ : state) {
        benchmark::DoNotOptimize(s);
        benchmark::DoNotOptimize(L::skip(s, set.c_str()));
    }
    L::clear(s);
}

void lengths(benchmark::internal::Benchmark* bench) {
    for (int length : {8, 32, 1024, 65536})
        bench->Arg(length);
}

void setSizes(benchmark::internal::Benchmark* bench) {
    bench->ArgsProduct({{16, 4096}, {2, 4, 30}});
}

void growth(benchmark::internal::Benchmark* bench) {
    bench->RangeMultiplier(8)->Range(8, 1 << 18)->Complexity();
}

BENCHMARK_TEMPLATE(BM_Str_Copy, Qz)->Apply(lengths);
BENCHMARK_TEMPLATE(BM_Str_Copy, C)->Apply(lengths);
BENCHMARK_TEMPLATE(BM_Str_Copy, Std)->Apply(lengths);
BENCHMARK_TEMPLATE(BM_Str_Copy, GLib)->Apply(lengths);
BENCHMARK_TEMPLATE(BM_Str_Equal, Qz)->Apply(lengths);
BENCHMARK_TEMPLATE(BM_Str_Equal, C)->Apply(lengths);
BENCHMARK_TEMPLATE(BM_Str_Equal, Std)->Apply(lengths);
BENCHMARK_TEMPLATE(BM_Str_Equal, Qt5)->Apply(lengths);
BENCHMARK_TEMPLATE(BM_Str_Equal, GLib)->Apply(lengths);
BENCHMARK_TEMPLATE(BM_Str_Next, Qz)->Apply(lengths);
BENCHMARK_TEMPLATE(BM_Str_Next, C)->Apply(lengths);
BENCHMARK_TEMPLATE(BM_Str_Next, Std)->Apply(lengths);
BENCHMARK_TEMPLATE(BM_Str_NextR, Qz)->Apply(lengths);
BENCHMARK_TEMPLATE(BM_Str_NextR, C)->Apply(lengths);
BENCHMARK_TEMPLATE(BM_Str_NextR, Std)->Apply(lengths);
BENCHMARK_TEMPLATE(BM_Str_NextInSet, Qz)->Apply(setSizes);
BENCHMARK_TEMPLATE(BM_Str_NextInSet, C)->Apply(setSizes);
BENCHMARK_TEMPLATE(BM_Str_NextInSet, Std)->Apply(setSizes);
BENCHMARK_TEMPLATE(BM_Str_SkipSet, Qz)->Apply(setSizes);
BENCHMARK_TEMPLATE(BM_Str_SkipSet, C)->Apply(setSizes);
BENCHMARK_TEMPLATE(BM_Str_SkipSet, Std)->Apply(setSizes);

#define EVERY_STRING(Bench, sizes)                                                                 \
    BENCHMARK_TEMPLATE(Bench, Qz) sizes;                                                           \
    BENCHMARK_TEMPLATE(Bench, Std) sizes;                                                          \
    BENCHMARK_TEMPLATE(Bench, Qt5) sizes;                                                          \
    BENCHMARK_TEMPLATE(Bench, GLib) sizes;                                                         \
    BENCHMARK_TEMPLATE(Bench, Absl) sizes
EVERY_STRING(BM_Str_Join, ->Arg(16)->Arg(40)->Arg(99));
EVERY_STRING(BM_Str_JoinPath, );
EVERY_STRING(BM_Str_Tokens, ->Arg(5)->Arg(12)->Arg(20)->Arg(50));
EVERY_STRING(BM_Str_AppendChar, ->Apply(growth));
EVERY_STRING(BM_Str_AppendCharAged, ->Apply(growth));
EVERY_STRING(BM_Str_AppendText, ->Apply(growth));

BENCHMARK_TEMPLATE(BM_Str_TokensOfSet, Qz)->Arg(5)->Arg(20);
BENCHMARK_TEMPLATE(BM_Str_TokensOfSet, Std)->Arg(5)->Arg(20);
BENCHMARK_TEMPLATE(BM_Str_TokensOfSet, GLib)->Arg(5)->Arg(20);
BENCHMARK_TEMPLATE(BM_Str_TokensOfSet, Absl)->Arg(5)->Arg(20);
BENCHMARK_TEMPLATE(BM_Str_Format, Qz);
BENCHMARK_TEMPLATE(BM_Str_Format, C);
BENCHMARK_TEMPLATE(BM_Str_Format, GLib);
BENCHMARK_TEMPLATE(BM_Str_Format, Absl);

} // namespace
