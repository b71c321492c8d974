// The regular-expression engine beside std::regex and, where their headers are
// found, PCRE2 (its interpreter) and RE2; for literals also qzSLinearPattern and
// the C library's memmem, which are given the length of the text.
//
// Lines: 1 MB of log-like text, searched line by line for whether a line
// matches. Megabyte: one search through the same text for a literal that stands
// at its end. Hostile: patterns that take a plain backtracking matcher
// exponential or quadratic time; their growth should be linear.
#include "regex/RegExp.h"
#include "regex/SLinearPattern.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <random>
#include <regex>
#include <string>
#include <vector>

#if __has_include(<pcre2.h>)
#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>
#define HAVE_PCRE2 1
#endif
#if __has_include(<re2/re2.h>)
#include <re2/re2.h>
#define HAVE_RE2 1
#endif

namespace {

const std::size_t textSize = 1 << 20;

struct Pattern {
    const char* name;
    const char* ours;
    const char* theirs;
};

const Pattern patterns[] = {
    {"literal", "timeout", "timeout"},
    {"anchored", "^2024-06-.. .* ERROR", "^2024-06-.. .* ERROR"},
    {"alternation", "timeout|retry|flushed", "timeout|retry|flushed"},
    {"classPlus", "[0-9]+ms", "[0-9]+ms"},
    {"word", "\\<disk\\>", "\\bdisk\\b"},
};

const std::vector<std::string>& logLines() {
    static const std::vector<std::string> lines = [] {
        const char* const levels[] = {"INFO", "INFO", "INFO", "DEBUG", "WARN", "ERROR"};
        const char* const words[] = {"connection", "from",    "client",  "accepted", "closed",
                                     "request",    "served",  "cache",   "miss",     "hit",
                                     "user",       "session", "started", "queue",    "flushed",
                                     "worker",     "idle",    "retry",   "disk",     "scheduled"};
        std::mt19937 random(1);
        const auto number = [&](unsigned from, unsigned below) {
            return std::to_string(from + random() % (below - from));
        };
        std::vector<std::string> made;
        for (std::size_t size = 0; size < textSize; size += made.back().size() + 1) {
            std::string line = "2024-0" + number(1, 10) + "-" + number(10, 29) + " " +
                               number(10, 24) + ":" + number(10, 60) + ":" + number(10, 60) + "." +
                               number(100, 1000) + " [" + number(1000, 9999) + "] " +
                               levels[random() % 6];
            for (unsigned n = 4 + random() % 6; n > 0; --n)
                line.append(" ").append(words[random() % 20]);
            if (random() % 40 == 0) line += " timeout";
            if (random() % 10 == 0) line += " took " + number(0, 5000) + "ms";
            made.push_back(std::move(line));
        }
        return made;
    }();
    return lines;
}

const Pattern needle{"needle", "connection reset by peer", "connection reset by peer"};

const std::string& logText() {
    static const std::string text = [] {
        std::string joined;
        for (const std::string& line : logLines())
            joined.append(line).append("\n");
        return joined.append(needle.ours);
    }();
    return text;
}

// One search in a line or text, the same for every engine.

class Ours {
  public:
    explicit Ours(const Pattern& pattern) : program(qzregcomp(pattern.ours)) {}
    Ours(const Ours&) = delete;
    Ours& operator=(const Ours&) = delete;
    ~Ours() { std::free(program); }
    bool in(const std::string& text) const { return qzregexec(program, text.c_str()) != 0; }

  private:
    qzregexp* program;
};

class Linear {
  public:
    explicit Linear(const Pattern& pattern) : searched(pattern.ours) {}
    bool in(const std::string& text) const {
        return searched.findBuffer(text.data(), static_cast<unsigned>(text.size())) >= 0;
    }

  private:
    qzSLinearPattern searched;
};

class Memmem {
  public:
    explicit Memmem(const Pattern& pattern) : literal(pattern.theirs) {}
    bool in(const std::string& text) const {
        return memmem(text.data(), text.size(), literal.data(), literal.size()) != nullptr;
    }

  private:
    std::string literal;
};

class Standard {
  public:
    explicit Standard(const Pattern& pattern) : program(pattern.theirs) {}
    bool in(const std::string& text) const {
        std::smatch match;
        return std::regex_search(text, match, program);
    }

  private:
    std::regex program;
};

#if HAVE_PCRE2
class Pcre2 {
  public:
    explicit Pcre2(const Pattern& pattern) {
        int error;
        PCRE2_SIZE at;
        program = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.theirs), PCRE2_ZERO_TERMINATED,
                                0, &error, &at, nullptr);
        match = pcre2_match_data_create_from_pattern(program, nullptr);
    }
    Pcre2(const Pcre2&) = delete;
    Pcre2& operator=(const Pcre2&) = delete;
    ~Pcre2() {
        pcre2_match_data_free(match);
        pcre2_code_free(program);
    }
    bool in(const std::string& text) const {
        const auto* start = reinterpret_cast<PCRE2_SPTR>(text.data());
        return pcre2_match(program, start, text.size(), 0, 0, match, nullptr) > 0;
    }

  private:
    pcre2_code* program;
    pcre2_match_data* match;
};
#endif

#if HAVE_RE2
class Re2 {
  public:
    explicit Re2(const Pattern& pattern) : program(pattern.theirs) {}
    bool in(const std::string& text) const {
        re2::StringPiece match;
        return program.Match(text, 0, text.size(), RE2::UNANCHORED, &match, 1);
    }

  private:
    RE2 program;
};
#endif

template <class Engine> void BM_RegExp_Compile(benchmark::State& state, const Pattern& pattern) {
    for (auto _ : state) {
        Engine engine(pattern);
        benchmark::DoNotOptimize(engine);
    }
}

template <class Engine> void BM_RegExp_Lines(benchmark::State& state, const Pattern& pattern) {
    const std::vector<std::string>& lines = logLines();
    const Engine engine(pattern);
    std::size_t found = 0;
    for (auto _ : state) {
        found = 0;
        for (const std::string& line : lines)
            found += engine.in(line);
        benchmark::DoNotOptimize(found);
    }
    state.counters["matching"] = static_cast<double>(found);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * logText().size()));
}

template <class Engine> void BM_RegExp_Megabyte(benchmark::State& state) {
    const std::string& text = logText();
    const Engine engine(needle);
    for (auto _ : state) {
        benchmark::ClobberMemory(); // memmem is known to give the same for the same text
        if (!engine.in(text)) state.SkipWithError("not found");
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}

void BM_RegExp_Hostile(benchmark::State& state, const char* pattern) {
    const std::string text(static_cast<std::size_t>(state.range(0)), 'a');
    const Ours engine(Pattern{"", pattern, ""});
    for (auto _ : state) {
        if (engine.in(text)) state.SkipWithError("matched");
    }
    state.SetComplexityN(state.range(0));
}

template <class Engine> void searchLines(const std::string& engine, const Pattern& pattern) {
    benchmark::RegisterBenchmark(("BM_RegExp_Lines/" + (pattern.name + ("/" + engine))).c_str(),
                                 BM_RegExp_Lines<Engine>, pattern);
}

template <class Engine> void searchMegabyte(const std::string& engine) {
    benchmark::RegisterBenchmark(("BM_RegExp_Megabyte/" + engine).c_str(),
                                 BM_RegExp_Megabyte<Engine>);
}

template <class Engine> void compare(const std::string& engine) {
    for (const Pattern& pattern : patterns) {
        const std::string name = std::string(pattern.name) + "/" + engine;
        benchmark::RegisterBenchmark(("BM_RegExp_Compile/" + name).c_str(),
                                     BM_RegExp_Compile<Engine>, pattern);
        searchLines<Engine>(engine, pattern);
    }
    searchMegabyte<Engine>(engine);
}

template <class Engine> void compareLiterals(const std::string& engine) {
    searchLines<Engine>(engine, patterns[0]);
    searchMegabyte<Engine>(engine);
}

[[maybe_unused]] const bool registered = [] {
    compare<Ours>("ours");
    compare<Standard>("std");
#if HAVE_PCRE2
    compare<Pcre2>("pcre2");
#endif
#if HAVE_RE2
    compare<Re2>("re2");
#endif
    compareLiterals<Linear>("linear");
    compareLiterals<Memmem>("memmem");
    return true;
}();

BENCHMARK_CAPTURE(BM_RegExp_Hostile, nestedPlus, "(a+)+[bc]")->Range(256, 262144)->Complexity();
BENCHMARK_CAPTURE(BM_RegExp_Hostile, overlap, "(a|aa)*[bc]")->Range(256, 262144)->Complexity();
BENCHMARK_CAPTURE(BM_RegExp_Hostile, dotStars, ".*.*[xy]")->Range(256, 262144)->Complexity();

} // namespace
