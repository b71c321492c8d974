#include "regex/RegExp.h"

#include "tests/regex/NaiveMatcher.h"
#include "util/detail/RawMemory.h"

#include <gtest/gtest.h>

#include <cassert>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <random>
#include <string>
#include <vector>

// A second copy of the engine that tells its errors: the library's own calls
// cannot be redirected. What its files include is included above.
namespace loud {

std::string lastError;
void qzregerror(const char* message) { lastError = message; }

#include "regex/detail/BacktrackStack.cxx"
#include "regex/detail/FailureTable.cxx"
#include "regex/detail/Guide.cxx"

#include "regex/RegExpCompile.cxx"
#include "regex/RegExpMatch.cxx"
#include "regex/RegExpSub.cxx"

} // namespace loud

namespace {

struct Free {
    void operator()(qzregexp* program) const { std::free(program); }
};
using Program = std::unique_ptr<qzregexp, Free>;

Program compile(const std::string& pattern) { return Program(qzregcomp(pattern.c_str())); }

// "0-3 1-2 -": the bounds of the whole match and of the groups up to the last
// that took part; "no match".
std::string boundsIn(const qzregexp& program, const char* text) {
    int last = 9;
    while (last > 0 && !program.startp[last] && !program.endp[last])
        --last;
    std::string bounds;
    for (int n = 0; n <= last; ++n) {
        if (n > 0) bounds += ' ';
        if (!program.startp[n] || !program.endp[n]) {
            bounds += '-';
            continue;
        }
        bounds +=
            std::to_string(program.startp[n] - text) + "-" + std::to_string(program.endp[n] - text);
    }
    return bounds;
}

std::string search(qzregexp* program, const std::string& text) {
    if (!program) return "no program";
    return qzregexec(program, text.c_str()) ? boundsIn(*program, text.c_str()) : "no match";
}

std::string search(const std::string& pattern, const std::string& text) {
    return search(compile(pattern).get(), text);
}

std::string programBytes(const qzregexp& program) {
    return std::string(program.program, program.programSize);
}

// Octets written as numbers.
std::string octets(std::initializer_list<int> values) {
    std::string bytes;
    for (int value : values)
        bytes += static_cast<char>(value);
    return bytes;
}

std::string repeated(const std::string& unit, unsigned times) {
    std::string text;
    for (; times > 0; --times)
        text += unit;
    return text;
}

struct SearchRow {
    const char* pattern;
    const char* text;
    const char* bounds;
};

void expectSearches(std::initializer_list<SearchRow> rows) {
    for (const SearchRow& row : rows) {
        SCOPED_TRACE(std::string("/") + row.pattern + "/ in \"" + row.text + "\"");
        EXPECT_EQ(search(row.pattern, row.text), row.bounds);
    }
}

} // namespace

TEST(qzregcomp, WritesTheseProgramBytes) {
    const struct {
        const char* pattern;
        std::string program;
    } rows[] = {
        {"", octets({156, 6, 0, 6, 9, 0, 3, 0, 0, 0})},
        {"a", octets({156, 6, 0, 8, 8, 0, 5, 'a', 0, 0, 0, 0})},
        {"x|y", octets({156, 6, 0, 8, 8, 0, 13, 'x', 0, 6, 0, 8, 8, 0, 5, 'y', 0, 0, 0, 0})},
        {"(x)", octets({156, 6, 0, 17, 21, 0, 3, 6, 0, 8, 8, 0, 5, 'x', 0, 31, 0, 3, 0, 0, 0})},
        {"ab*", octets({156, 6, 0, 16, 8, 0, 5, 'a', 0, 10, 0, 8, 8, 0, 0, 'b', 0, 0, 0, 0})},
        {".+", octets({156, 6, 0, 9, 11, 0, 6, 3, 0, 0, 0, 0, 0})},
        {"x?", octets({156, 6, 0, 17, 6, 0, 8, 8, 0, 8, 'x', 0, 6, 0, 3, 9, 0, 3, 0, 0, 0})},
        {"(x)*", octets({156, 6,  0, 29, 6, 0, 20, 21, 0, 3, 6, 0, 8, 8, 0, 5, 'x',
                         0,   31, 0, 3,  7, 0, 17, 6,  0, 3, 9, 0, 3, 0, 0, 0})},
        {"(x)+", octets({156, 6, 0, 29, 21, 0, 3,  6, 0, 8, 8, 0, 5, 'x', 0, 31, 0,
                         3,   6, 0, 6,  7,  0, 17, 6, 0, 3, 9, 0, 3, 0,   0, 0})},
        {"[^a-c]", octets({156, 6, 0, 10, 5, 0, 7, 'a', 'b', 'c', 0, 0, 0, 0})},
        {"[ac]$", octets({156, 6, 0, 12, 4, 0, 6, 'a', 'c', 0, 2, 0, 3, 0, 0, 0})},
        {"^\\<\\>", octets({156, 6, 0, 12, 1, 0, 3, 12, 0, 3, 13, 0, 3, 0, 0, 0})},
        // The escaped character becomes an atom of its own under an operator.
        {"ab\\.*",
         octets({156, 6, 0, 17, 8, 0, 6, 'a', 'b', 0, 10, 0, 8, 8, 0, 0, '.', 0, 0, 0, 0})},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.pattern);
        const Program program = compile(row.pattern);
        ASSERT_TRUE(program);
        EXPECT_EQ(programBytes(*program), row.program);
    }
}

TEST(qzregcomp, ReportsWhatIsWrongWithAPattern) {
    const struct {
        const char* pattern;
        const char* error;
    } rows[] = {
        {nullptr, "NULL argument"},
        {"(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)", "too many ()"},
        {"(a", "unmatched ()"},
        {"a)", "unmatched ()"},
        {"a**", "nested *?+"},
        {"a?+", "nested *?+"},
        {"(a*)*", "*+ operand could be empty"},
        {"(a|b*)+", "*+ operand could be empty"},
        {"^*", "*+ operand could be empty"},
        {"\\<+", "*+ operand could be empty"},
        {"[z-a]", "invalid [] range"},
        {"[b-ac]", "invalid [] range"},
        {"[abc", "unmatched []"},
        {"[]", "unmatched []"},
        {"[^]", "unmatched []"},
        {"[a-", "unmatched []"},
        {"*a", "?+* follows nothing"},
        {"a|+", "?+* follows nothing"},
        {"(?a)", "?+* follows nothing"},
        {"\\", "trailing \\"},
        {"ab\\", "trailing \\"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.pattern ? row.pattern : "null");
        loud::lastError.clear();
        EXPECT_EQ(loud::qzregcomp(row.pattern), nullptr);
        EXPECT_EQ(loud::lastError, row.error);
        EXPECT_EQ(qzregcomp(row.pattern), nullptr);
    }
}

TEST(qzregcomp, TooBigBeginsAt32767Bytes) {
    // The bytes around a literal: magic, BRANCH, EXACTLY, NUL, END.
    const std::string largest(32766 - 11, 'a');
    Program program = compile(largest);
    ASSERT_TRUE(program);
    EXPECT_EQ(program->programSize, 32766);
    EXPECT_EQ(search(program.get(), "b" + largest), "1-32756");

    loud::lastError.clear();
    EXPECT_EQ(loud::qzregcomp((largest + "a").c_str()), nullptr);
    EXPECT_EQ(loud::lastError, "regexp too big");

    // An error further on is found first, however much comes before it.
    EXPECT_EQ(loud::qzregcomp((repeated("[\x01-\xff]", 100000) + "(").c_str()), nullptr);
    EXPECT_EQ(loud::lastError, "unmatched ()");

    // 2 to the 32nd power and 10 bytes.
    EXPECT_EQ(loud::qzregcomp(("[" + repeated("\x01-\xff", 16843009) + "]").c_str()), nullptr);
    EXPECT_EQ(loud::lastError, "regexp too big");
}

TEST(qzregcomp, LargestPatternsOfEachKindCompile) {
    for (const std::string& pattern :
         {repeated("|", 5459), repeated("(ab|cd)", 9) + repeated("x|", 4000), repeated(".*", 5400),
          repeated("a?", 2300), repeated("^?", 2700), repeated("[\x01-\xff]", 126),
          "(((((((((" + repeated("a|", 3000) + "b)+c)+d)+e)*f)+g)*h)+i)*j)*k"}) {
        SCOPED_TRACE(pattern.substr(0, 20));
        const Program program = compile(pattern);
        ASSERT_TRUE(program);
        EXPECT_GT(program->programSize, 24000);
        EXPECT_NE(search(program.get(), "xyz"), "no program");
    }
}

TEST(qzregexp, HeaderDescribesThePattern) {
    const struct {
        const char* pattern;
        char start;
        bool anchored;
        const char* must;
    } rows[] = {
        {"abc", 'a', false, nullptr},
        {"^abc", 0, true, nullptr},
        {"a|b", 0, false, nullptr},
        {"^a|b", 0, false, nullptr},
        {"(a)b", 0, false, nullptr},
        {"\\<the", 0, false, nullptr},
        // Only what starts with * or ? has a must: + does not count.
        {"a*bc", 0, false, "bc"},
        {"a?bc", 0, false, "bc"},
        {"a+bc", 0, false, nullptr},
        {"(a*)b", 0, false, "b"},
        {"xa*bc", 'x', false, nullptr},
        {"a*b|c", 0, false, nullptr},
        // The longest literal outside of groups; of equal ones the last.
        {".*ab.cd", 0, false, "cd"},
        {".*abc.de", 0, false, "abc"},
        {".*(abcd)ef", 0, false, "ef"},
        {"a*", 0, false, nullptr},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.pattern);
        const Program program = compile(row.pattern);
        ASSERT_TRUE(program);
        EXPECT_EQ(program->regstart, row.start);
        EXPECT_EQ(program->reganch != 0, row.anchored);
        ASSERT_EQ(program->regmust != nullptr, row.must != nullptr);
        if (!row.must) continue;
        EXPECT_STREQ(program->regmust, row.must);
        EXPECT_EQ(program->regmlen, static_cast<int>(std::strlen(row.must)));
    }
}

TEST(qzregexec, LiteralsAndEscapes) {
    expectSearches({
        {"b", "abc", "1-2"},
        {"abc", "ababc", "2-5"},
        {"abc", "ab", "no match"},
        {"a\\*b", "aab a*b", "4-7"},
        {"\\.\\\\\\n", "n.\\n", "1-4"},
        {"ab\\.*c", "xab...c", "1-7"},
        {"a{2}]", "aa a{2}]", "3-8"},
        {"\xe9+", "caf\xe9\xe9", "3-5"},
        {"", "abc", "0-0"},
    });
}

TEST(qzregexec, BracketSets) {
    expectSearches({
        {"[bc]+", "abcd", "1-3"},
        {"[^bc]+", "bcad", "2-4"},
        {"[]x]", "a]", "1-2"},
        {"[^]x]", "]xa", "2-3"},
        {"[-a]+", "b-a-", "1-4"},
        {"[a-]+", "b-a-", "1-4"},
        {"[^-a]", "-ab", "2-3"},
        {"[a-a]+", "ba", "1-2"},
        {"[a-c-e]+", "zacebd-", "1-6"},
        {"[+--]+", "*+,-.", "1-4"},
        {"[]-a]+", "\\]^_`ab", "1-6"},
        {"[.*\\]+", "a\\.*", "1-4"},
        {"[\x80-\xff]+", "a\x80\xc0\xff", "1-4"},
    });
}

TEST(qzregexec, AnchorsAndWords) {
    expectSearches({
        {"^b", "ab", "no match"},
        {"^a", "ab", "0-1"},
        {"a|^b", "cba", "2-3"},
        {"$", "abc", "3-3"},
        {"c$", "cc", "1-2"},
        {"c$|a", "ccx", "no match"},
        {"\\<the\\>", "bathe them the end", "11-14"},
        {"\\<the", "them", "0-3"},
        {"\\<the\\>", "them", "no match"},
        {"\\<_1", "a_1 _1", "4-6"},
        {"\\<", "  ", "no match"},
        {"\\<\xff\\>", "\xff", "no match"},
        {"\xff\\>", "\xff\xff", "0-1"},
    });
}

TEST(qzregexec, WordEndIgnoresCharacterBefore) {
    expectSearches({{"\\>", "", "0-0"},
                    {"\\>", "ab", "2-2"},
                    {"a\\>", "ab a", "3-4"},
                    {" \\>", "a  b", "1-2"},
                    {"\\>", " a", "0-0"}});
}

TEST(qzregexec, LeftmostThenFirstAlternativeThenLongestRun) {
    expectSearches({
        {"a|ab", "ab", "0-1"},
        {"ab|a", "ab", "0-2"},
        {"(a|ab)(c|bcd)(d*)", "abcd", "0-4 0-1 1-4 4-4"},
        {"b|abcd", "abc", "1-2"},
        {"a*", "baa", "0-0"},
        {"a+", "baa", "1-3"},
        {"ba?", "baa", "0-2"},
        {".*b", "abab ", "0-4"},
        {"x*", "", "0-0"},
        {"|a", "a", "0-0"},
    });
}

TEST(qzregexec, NewlineSeparatesAlternatives) {
    expectSearches({{"a\nb", "cb", "1-2"},
                    {"(x\ny)z", "yz", "0-2 0-1"},
                    {"a\\\nb", "ba\nb", "1-4"},
                    {"[\n]", "a\n", "1-2"}});
}

TEST(qzregexec, GroupsKeepTheirLastBounds) {
    expectSearches({
        {"(a)|b", "b", "0-1"},
        {"((a)|b)*", "ab", "0-2 1-2 0-1"},
        {"((a)|(b))*", "aba", "0-3 2-3 2-3 1-2"},
        {"(a|ab)*c", "aabc", "0-4 1-3"},
        {"(a*)(ab)*(b*)", "abb", "0-3 0-1 - 1-3"},
        {"((a+)b)*a", "aabab", "0-4 0-3 0-2"},
        {"(x(y)?)+z", "xyxz", "0-4 2-3 1-2"},
        {"(((((((((a)))))))))", "ba", "1-2 1-2 1-2 1-2 1-2 1-2 1-2 1-2 1-2 1-2"},
    });
}

TEST(qzregexec, BoundsAfterNoMatch) {
    const std::string text = "xaabc";
    const auto boundsAfter = [&](const char* pattern, const char* other) {
        const Program program = compile(pattern);
        EXPECT_EQ(qzregexec(program.get(), text.c_str()), 1);
        EXPECT_EQ(qzregexec(program.get(), other), 0);
        return program->startp[0] ? boundsIn(*program, text.c_str()) : "cleared";
    };
    EXPECT_EQ(boundsAfter("a*bc", "aa"), "1-5"); // no regmust: not even tried
    EXPECT_EQ(boundsAfter("abc", "xyz"), "2-5"); // no regstart
    EXPECT_EQ(boundsAfter("abc", "ab"), "cleared");
    EXPECT_EQ(boundsAfter("(a+)bc", "aab"), "cleared");
    EXPECT_EQ(boundsAfter("(aa|x)(b|a)", "a"), "cleared");
    EXPECT_EQ(boundsAfter("^x", "a"), "cleared");
}

TEST(qzregexec, FindsLiteralsAmongManyNearMisses) {
    // Across the ends of the pieces in which a string is measured.
    for (unsigned before = 0; before < 1700; ++before) {
        const std::string text = repeated("q", before) + "qqxq" + repeated("xq", 600);
        const std::string bounds = std::to_string(before) + "-" + std::to_string(before + 4);
        ASSERT_EQ(search("qqxq", text), bounds);
        ASSERT_EQ(search("qqxqq", text), "no match") << before;
        ASSERT_EQ(search("abq", repeated("q", before) + "abq"),
                  std::to_string(before) + "-" + std::to_string(before + 3));
    }
    EXPECT_EQ(search("[^a]*qqxq[^q]", repeated("q", 5000)), "no match");
}

TEST(qzregexec, RefusesDamagedBlocks) {
    const struct {
        const char* pattern;
        unsigned at;
        int byte;
        const char* text;
        const char* error;
    } rows[] = {
        {"a", 0, 0, "a", "corrupted program"},
        {"a", 4, 99, "a", "memory corruption"},
        {"a", 4, 20, "a", "memory corruption"},
        {"a", 4, 30, "a", "memory corruption"},
        {"a", 4, 40, "a", "memory corruption"},
        {"a", 4, 255, "a", "memory corruption"},
        {"a", 6, 0, "a", "corrupted pointers"},
        {"a*", 6, 0, "a", "corrupted pointers"},
        {"a*", 7, 1, "a", ""}, // the loop cannot run, but need not
        {"a+", 7, 1, "a", "internal foulup"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.pattern) + " with byte " + std::to_string(row.at) + " = " +
                     std::to_string(row.byte));
        const Program program(loud::qzregcomp(row.pattern));
        program->program[row.at] = static_cast<char>(row.byte);
        loud::lastError.clear();
        const int found = loud::qzregexec(program.get(), row.text);
        if (*row.error) {
            EXPECT_EQ(found, 0);
            EXPECT_EQ(loud::lastError, row.error);
        } else {
            EXPECT_EQ(loud::lastError, "internal foulup");
            EXPECT_EQ(found, 1);
        }
    }
    loud::lastError.clear();
    EXPECT_EQ(loud::qzregexec(nullptr, "a"), 0);
    EXPECT_EQ(loud::lastError, "NULL parameter");
    loud::lastError.clear();
    EXPECT_EQ(loud::qzregexec(compile("a").get(), nullptr), 0);
    EXPECT_EQ(loud::lastError, "NULL parameter");
}

TEST(qzregexec, GoesByTheBlockAsItIsNow) {
    Program program = compile("[ab]c|d");
    program->program[7] = 'x'; // the set's first member
    EXPECT_EQ(search(program.get(), "acxc"), "2-4");

    program = compile("abc");
    program->program[7] = 'x';
    program->regstart = 'x';
    EXPECT_EQ(search(program.get(), "abcxbc"), "3-6");

    program = compile("abc");
    program->regstart = 'x';
    EXPECT_EQ(search(program.get(), "xabc"), "no match");

    program = compile("a");
    program->reganch = 1;
    EXPECT_EQ(search(program.get(), "ba"), "no match");

    program = compile("a*b");
    program->regmust = nullptr;
    EXPECT_EQ(search(program.get(), "aab"), "0-3");
}

namespace {

// Compares the library with the naive matcher, once as compiled and once going
// by the program bytes alone. False when the naive matcher gave up.
bool agree(const std::string& pattern, qzregexp* program, const std::string& text,
           unsigned long maxSteps) {
    NaiveMatcher naive;
    const int expected = naive.match(program, text.c_str(), maxSteps);
    if (naive.stepsLeft == 0) return false;
    const unsigned short size = program->programSize;
    for (const unsigned short useGuide : {size, static_cast<unsigned short>(0)}) {
        program->programSize = useGuide;
        const int found = qzregexec(program, text.c_str());
        const bool sameBounds =
            !expected || (std::equal(naive.startp, naive.startp + 10, program->startp) &&
                          std::equal(naive.endp, naive.endp + 10, program->endp));
        EXPECT_EQ(found, expected) << "/" << pattern << "/ in \"" << text << '"';
        EXPECT_TRUE(sameBounds) << "/" << pattern << "/ in \"" << text << '"';
    }
    program->programSize = size;
    return true;
}

std::vector<std::string> allTexts(unsigned maxLength) {
    std::vector<std::string> texts{""};
    for (std::size_t done = 0; texts[done].size() < maxLength; ++done) {
        texts.push_back(texts[done] + 'a');
        texts.push_back(texts[done] + 'b');
    }
    return texts;
}

} // namespace

TEST(qzregexec, AgreesWithNaiveMatcherOnEverySmallPattern) {
    const char* const tokens[] = {"a", "b", ".",    "*",    "+",   "?",   "|", "(",
                                  ")", "^", "[ab]", "[^a]", "\\<", "\\>", "$"};
    const std::vector<std::string> texts = allTexts(6);
    ASSERT_EQ(texts.size(), 127u);
    std::vector<std::string> patterns{""};
    std::size_t compiled = 0;
    for (std::size_t done = 0, length = 0, end = 1; length <= 4; ++length, end = patterns.size()) {
        for (; done < end; ++done) {
            const std::string pattern = patterns[done];
            if (const Program program = compile(pattern)) {
                ++compiled;
                for (const std::string& text : texts)
                    ASSERT_TRUE(agree(pattern, program.get(), text, 1000000));
            }
            if (HasFailure()) return;
            for (const char* token : tokens)
                if (length < 4) patterns.push_back(pattern + token);
        }
    }
    EXPECT_EQ(compiled, 18302u);
}

TEST(qzregexec, AgreesWithNaiveMatcherOnRandomPatterns) {
    // Parts that make for overlapping loops, so that on these texts many a
    // search takes more steps than it may without marking its failures.
    const char* const parts[] = {"a",      "b",   "ab",      "a*",     "a+",    "b?",   "[ab]",
                                 "[ab]*",  ".*",  "[^c]+",   "(",      "(",     ")",    ")*",
                                 ")+",     ")?",  "|",       "(a|ab)", "(a+)+", "[cd]", "c",
                                 "(a|b)*", "\\<", "(b|ba)*", "[bc]+",  "$"};
    std::mt19937 random(20);
    const auto below = [&](unsigned n) { return random() % n; };
    unsigned long compared = 0;
    for (unsigned round = 0; round < 100000; ++round) {
        std::string pattern;
        for (unsigned n = 2 + below(9); n > 0; --n)
            pattern += parts[below(std::size(parts))];
        const Program program = compile(pattern);
        if (!program) continue;
        for (unsigned n = 0; n < 4; ++n) {
            std::string text;
            for (unsigned length = below(28); length > 0; --length)
                text += "aaaabbbc"[below(8)];
            compared += agree(pattern, program.get(), text, 50000);
        }
        if (HasFailure()) return;
    }
    EXPECT_GT(compared, 50000u);
}

TEST(qzregexec, HostilePatternsEnd) {
    const std::string a(100000, 'a');
    expectSearches({{"(a+)+b", a.c_str(), "no match"}, {"(a|aa)*c", a.c_str(), "no match"}});
    for (const char* pattern :
         {"(a+)+[bc]", "(a|aa)*[bc]", "(a|a|aa)+(a|aa)+[bc]", "((a+)(a+))+[bc]",
          "(a*a*a*[ab])+[cd]", "(.*)(.*)(.*)[bc]", "(aa|aaa)*(a|aa)?[bc]"}) {
        SCOPED_TRACE(pattern);
        EXPECT_EQ(search(pattern, a), "no match");
    }
    // What follows a group is tried once, not once for each alternative.
    const std::string many = "(" + repeated("a|", 999) + "a)" + repeated("a", 8000) + "[bc]";
    EXPECT_EQ(search(many, std::string(20000, 'a')), "no match");
    EXPECT_EQ(search("(a+)+[bc]", a + "c"), "0-100001 0-100000");
    // Failures far back must not be taken for ones here.
    EXPECT_EQ(search("(a|aa)*[bc]d", a + "bx" + a + "bd"), "100002-200004 200001-200002");
    EXPECT_EQ(search(repeated("a?", 100) + repeated("a", 100) + "[b$]", std::string(1000, 'a')),
              "no match");
}

TEST(qzregexec, RunsAreNotScannedAgainForEachStart) {
    const std::string a(1000000, 'a');
    for (const char* pattern :
         {".*[xy]", "(.*)[xy]", "x*.*[yz]", "a.*a.*[xy]", "\\>*[xy]|.*z[xy]"}) {
        SCOPED_TRACE(pattern);
        const std::string found = search(pattern, a);
        EXPECT_TRUE(found == "no match" || found == "no program") << found;
    }
    EXPECT_EQ(search("[^b]*c[xy]", "c" + a), "no match");
}

TEST(qzregexec, LongTextsNeedNoStack) {
    std::string text = repeated("ab", 5000000);
    expectSearches({
        {"(a|b)*c", (text + "c").c_str(), "0-10000001 9999999-10000000"},
        {"(ab|c)*d", (text + "d").c_str(), "0-10000001 9999998-10000000"},
        // Keeps choices at every character: the stack grows over many chunks.
        {"(a|ab|b)*", text.c_str(), "0-10000000 9999999-10000000"},
    });
    // Here it is taken back all the way.
    text.resize(1000000);
    expectSearches({
        {"(a|b)*[cd]", text.c_str(), "no match"},
        {"(ab|c)*[de]", text.c_str(), "no match"},
        {"^(a|ab|b)*[de]", text.c_str(), "no match"},
    });
}

TEST(qzregsub, ExpandsTemplates) {
    const Program program = compile("(b)(x)?(c+)");
    ASSERT_EQ(qzregexec(program.get(), "abccd"), 1);
    const struct {
        const char* source;
        const char* expected;
    } rows[] = {
        {"", ""},           {"plain", "plain"},     {"<&>", "<bcc>"},   {"\\3\\1\\0", "ccbbcc"},
        {"[\\2\\9]", "[]"}, {"\\&\\\\&", "&\\bcc"}, {"\\n\\", "\\n\\"}, {"\\10", "b0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.source);
        char dest[64];
        std::memset(dest, '#', sizeof dest);
        qzregsub(program.get(), row.source, dest);
        EXPECT_STREQ(dest, row.expected);
        EXPECT_EQ(dest[std::strlen(row.expected) + 1], '#');
    }
}

TEST(qzregsub, RefusesNullAndDamagedArguments) {
    const Program program = compile("a");
    char dest[] = "kept";
    loud::qzregsub(nullptr, "x", dest);
    EXPECT_EQ(loud::lastError, "NULL parm to regsub");
    loud::qzregsub(program.get(), nullptr, dest);
    loud::qzregsub(program.get(), "x", nullptr);
    program->program[0] = 0;
    loud::qzregsub(program.get(), "x", dest);
    EXPECT_EQ(loud::lastError, "damaged regexp fed to regsub");
    EXPECT_STREQ(dest, "kept");
}

TEST(qzregsub, DamagedMatchStopsUnterminated) {
    for (const std::size_t cutAt : {1, 2, 3}) {
        SCOPED_TRACE(cutAt);
        char text[] = "xabc";
        const Program program = compile("abc");
        ASSERT_EQ(qzregexec(program.get(), text), 1);
        text[cutAt] = '\0';
        char dest[] = "##########";
        loud::lastError.clear();
        loud::qzregsub(program.get(), "<&>", dest);
        EXPECT_EQ(loud::lastError, "damaged match string");
        EXPECT_EQ(std::string(dest + 4, 6), "######");
    }
}

TEST(qzregerror, PrintsNothing) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    qzregerror("unmatched ()");
    EXPECT_EQ(qzregcomp("("), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}
