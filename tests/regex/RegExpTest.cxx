#include "regex/RegExp.h"
#include "regex/IsRegEx.h"
#include "regex/RegEx.h"
#include "regex/SLinearPattern.h"
#include "tests/regex/NaiveMatcher.h"
#include "util/Str.h"
#include "util/detail/RawMemory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <emmintrin.h>
#include <random>

// A second copy of the engine that tells its errors: the library's own calls
// cannot be redirected. What its files include is included above.
namespace loud {
std::string lastError;
void qzregerror(const char* message) { lastError = message; }
#include "regex/RegExpCompile.cxx"
#include "regex/RegExpMatch.cxx"
#include "regex/RegExpSub.cxx"
#include "regex/detail/BacktrackStack.cxx"
#include "regex/detail/FailureTable.cxx"
#include "regex/detail/Guide.cxx"
#include "regex/detail/LiteralSearch.cxx"
} // namespace loud

namespace {

using Program = std::unique_ptr<qzregexp, decltype(&std::free)>;
Program compile(const std::string& pattern) {
    return {loud::qzregcomp(pattern.c_str()), std::free};
}

// "0-3 2:1-2": the bounds of the match and of the groups that took part; else
// the error, if any.
std::string search(qzregexp* program, const char* text) {
    if (!program) return loud::lastError;
    loud::lastError = "no match";
    if (!loud::qzregexec(program, text)) return loud::lastError;
    std::string bounds;
    for (int n = 0; n < 10; ++n) {
        if (!program->startp[n] || !program->endp[n]) continue;
        if (n > 0) bounds += " " + std::to_string(n) + ":";
        bounds += std::to_string(program->startp[n] - text) + "-";
        bounds += std::to_string(program->endp[n] - text);
    }
    return bounds;
}

std::string searchRow(const std::string& patternAndText) {
    const std::size_t blank = patternAndText.find(' ');
    const Program program = compile(patternAndText.substr(0, blank));
    return search(program.get(), patternAndText.c_str() + blank + 1);
}

// Rows are "input => output"; the input of a search is "pattern text".
void expectRows(const std::vector<std::string>& rows,
                const std::function<std::string(const std::string&)>& actual = searchRow) {
    for (const std::string& row : rows) {
        const std::size_t arrow = row.find(" => ");
        EXPECT_EQ(actual(row.substr(0, arrow)), row.substr(arrow + 4)) << row.substr(0, 80);
    }
}

std::string repeated(const std::string& unit, unsigned times) {
    std::string text;
    for (; times > 0; --times)
        text += unit;
    return text;
}

TEST(qzregcomp, WritesTheseProgramBytes) {
    const Program program = compile("(x)*(y)+z?\\<ab\\.*[^a-c]|");
    std::string bytes;
    for (int n = 0; n < program->programSize; ++n)
        bytes += " " + std::to_string(program->program[n] & 255);
    EXPECT_EQ(bytes,
              " 156 6 0 93 6 0 20 21 0 3 6 0 8 8 0 5 120 0 31 0 3 7 0 17 6 0 3 9 0 3 22 0 3 6 0 8 "
              "8 0 5 121 0 32 0 3 6 0 6 7 0 17 6 0 3 9 0 3 6 0 8 8 0 8 122 0 6 0 3 9 0 3 12 0 3 8 "
              "0 6 97 98 0 10 0 8 8 0 0 46 0 5 0 13 97 98 99 0 6 0 6 9 0 3 0 0 0");
}

TEST(qzregcomp, ReportsWhatIsWrongWithAPattern) {
    expectRows({"()()()()()()()()()()  => too many ()", "(a  => unmatched ()",
                "a)  => unmatched ()", "a**  => nested *?+", "a?+  => nested *?+",
                "(a*)*  => *+ operand could be empty", "\\<+  => *+ operand could be empty",
                "[b-ac]  => invalid [] range", "[abc  => unmatched []", "[]  => unmatched []",
                "[a-  => unmatched []", "*a  => ?+* follows nothing", "a|+  => ?+* follows nothing",
                "ab\\  => trailing \\"});
    EXPECT_EQ(loud::qzregcomp(nullptr), nullptr);
    EXPECT_EQ(loud::lastError, "NULL argument");
}

TEST(qzregcomp, TooBigBeginsAt32767Bytes) {
    const std::string largest(32766 - 11, 'a'); // 11: magic, BRANCH, EXACTLY, NUL, END
    EXPECT_EQ(compile(largest)->programSize, 32766);
    expectRows({largest + "a  => regexp too big",
                repeated("[\x01-\xff]", 100000) + "(  => unmatched ()",         // found first
                "[" + repeated("\x01-\xff", 16843009) + "]  => regexp too big", // 2^32 and 10 bytes
                repeated("a?", 2300) + "  => 0-0"});
}

TEST(qzregexp, HeaderDescribesThePattern) {
    const auto header = [](const std::string& pattern) {
        const Program program = compile(pattern);
        std::string fields = program->reganch ? "^" : "";
        if (program->regstart) fields += program->regstart;
        if (program->regmust) fields.append("...").append(program->regmust, program->regmlen);
        return fields;
    };
    expectRows({"abc => a", "^abc => ^", "a|b => ", "(a)b => ", "\\<the => ", "a* => ",
                "a?bc => ...bc", "a+bc => ", "xa*bc => x", "a*b|c => ", ".*ab.cd => ...cd",
                ".*abc.de => ...abc", ".*(abc)ef => ...ef"},
               header);
}

TEST(qzregexec, ConstructsMatchWhatTheyStandFor) {
    expectRows(
        {"a\\*b aab,a*b => 4-7", "\\.\\\\\\n n.\\n => 1-4", "a{2}] aa,a{2}] => 3-8",
         "[]x] a] => 1-2", "[^]x] ]xa => 2-3", "[-a]+ b-a- => 1-4", "[a-]+ b-a- => 1-4",
         "[^-a] -ab => 2-3", "[a-c-e]+ zacebd- => 1-6", "[+--]+ *+,-. => 1-4",
         "[]-a]+ \\]^_`ab => 1-6", "[.*\\]+ a\\.* => 1-4", "\\<_1 a_1,_1 => 4-6",
         "[\x80-\xff]+ a\x80\xc0\xff => 1-4", "\\<\xff\\> \xff => no match",
         "((((((((a)))))))(b)) ab => 0-2 1:0-2 2:0-1 3:0-1 4:0-1 5:0-1 6:0-1 7:0-1 8:0-1 9:1-2"});
}

TEST(qzregexec, WordEndIgnoresCharacterBefore) {
    expectRows({"\\>  => 0-0", "\\> ab => 2-2", ",\\> a,,b => 1-2", "\\> ,a => 0-0"});
}

TEST(qzregexec, NewlineSeparatesAlternatives) {
    expectRows(
        {"a\nb cb => 1-2", "(x\ny)z yz => 0-2 1:0-1", "a\\\nb ba\nb => 1-4", "[\n] a\n => 1-2"});
}

TEST(qzregexec, BoundsAfterNoMatch) {
    const auto keepsBounds = [](const char* pattern, const char* text) {
        const Program program = compile(pattern);
        EXPECT_NE(search(program.get(), "xaabc"), "no match");
        EXPECT_EQ(search(program.get(), text), "no match");
        EXPECT_FALSE(program->startp[1] || program->endp[1]);
        return program->startp[0] && program->endp[0];
    };
    EXPECT_TRUE(keepsBounds("a*bc", "aa")) << "without regmust no match is tried";
    EXPECT_TRUE(keepsBounds("abc", "xyz")) << "nor without regstart";
    for (const char* tried : {"abc", "(a+)bc", "^xa.", "[a-x]+c"})
        EXPECT_FALSE(keepsBounds(tried, "ab")) << tried;
}

TEST(qzregexec, GoesByTheBlockAsItIsNow) {
    const struct {
        const char* pattern;
        int at, byte;
        const char *text, *expected;
    } changes[] = {{"[ab]c|d", 7, 'x', "acxc", "2-4"},     {"a", 0, 0, "a", "corrupted program"},
                   {"a", 4, 20, "a", "memory corruption"}, {"a", 4, 30, "a", "memory corruption"},
                   {"a", 4, 40, "a", "memory corruption"}, {"a", 6, 0, "a", "corrupted pointers"},
                   {"a+", 7, 1, "a", "internal foulup"},   {"^ab", 11, 'c', "ac", "0-2"},
                   {"a", 4, 8, nullptr, "NULL parameter"}};
    for (const auto& change : changes) {
        const Program program = compile(change.pattern);
        program->program[change.at] = static_cast<char>(change.byte);
        EXPECT_EQ(search(program.get(), change.text), change.expected) << change.byte;
    }
    EXPECT_EQ(qzregexec(nullptr, "a"), 0);
    const Program program = compile("abc");
    program->regstart = 'b';
    EXPECT_EQ(search(program.get(), "abc"), "no match");
}

TEST(qzregexec, AgreesWithNaiveMatcherOnRandomPatterns) {
    // Overlapping loops, so that many a search has to mark its failures.
    const char* const parts[] = {
        "a",     "b",  "c",      "ab",    ".",      "a*",      "a+", "b?", "[ab]", "[^a]",
        "[ab]*", ".*", "[^c]+",  "[bc]+", "[cd]",   "(",       "(",  ")",  ")*",   ")+",
        ")?",    "|",  "(a|ab)", "(a+)+", "(a|b)*", "(b|ba)*", "^",  "$",  "\\<",  "\\>"};
    std::mt19937 random(20);
    for (unsigned round = 0; round < 400000; ++round) {
        std::string pattern, text;
        for (unsigned n = 1 + random() % 10; n > 0; --n)
            pattern += parts[random() % std::size(parts)];
        for (unsigned n = random() % 28; n > 0; --n)
            text += "aaaabbbc,"[random() % 9];
        const Program program = compile(pattern);
        ASSERT_TRUE(!program || NaiveMatcher::agrees(program.get(), text.c_str(), 50000))
            << "/" << pattern << "/ in \"" << text << '"';
    }
}

TEST(qzregexec, HostilePatternsAndLongTextsEnd) {
    const std::string a(100000, 'a'), pairs = repeated("ab", 1000000);
    for (const std::string pattern :
         {"(a+)+b", "(a+)+[bc]", "(a|a|aa)+(a|aa)+[bc]", "(a*a*a*[ab])+[cd]", "(.*)(.*)(.*)[bc]",
          "(aa|aaa)*(a|aa)?[bc]", "x*.*[yz]", "[^b]*d[xy]"})
        EXPECT_EQ(searchRow(pattern + " " + a), "no match") << pattern;
    expectRows({// What follows a group is tried once, not once for each alternative.
                "(" + repeated("a|", 999) + "a)" + std::string(8000, 'a') + "[bc] " +
                    a.substr(80000) + " => no match",
                // Failures far back must not be taken for ones here.
                "(a|aa)*[bc]d " + a + "bx" + a + "bd => 100002-200004 1:200001-200002",
                // Choices at every character, kept or all taken back, are not on the stack.
                "(a|ab|b)* " + pairs + " => 0-2000000 1:1999999-2000000",
                "^(a|ab|b)*[de] " + pairs + " => no match"});
    // Across the ends of the pieces in which a text is measured.
    for (unsigned before = 0; before < 1700; ++before)
        ASSERT_NE(searchRow("qab " + std::string(before, 'q') + "qab"), "no match") << before;
}

TEST(qzregsub, ExpandsTemplates) {
    const Program program = compile("(b)(x)?(c+)");
    ASSERT_EQ(qzregexec(program.get(), "abccd"), 1);
    const auto expanded = [&](const std::string& source) {
        char dest[10];
        qzregsub(program.get(), source.c_str(), dest);
        return std::string(dest);
    };
    expectRows({" => ", "<&> => <bcc>", "\\3\\1\\0& => ccbbccbcc", "[\\2\\9] => []",
                "\\&\\\\& => &\\bcc", "\\n\\ => \\n\\", "\\10 => b0"},
               expanded);
}

TEST(qzregsub, DamagedMatchStopsUnterminated) {
    char text[] = "xabc", dest[] = "##########";
    const Program program = compile("abc");
    ASSERT_EQ(qzregexec(program.get(), text), 1);
    text[2] = '\0';
    loud::qzregsub(program.get(), "<&>", dest);
    EXPECT_EQ(loud::lastError, "damaged match string");
    loud::qzregsub(nullptr, "x", dest + 4);
    loud::qzregsub(program.get(), nullptr, dest + 4);
    loud::qzregsub(program.get(), "x", nullptr);
    EXPECT_EQ(loud::lastError, "NULL parm to regsub");
    program->program[0] = 0;
    loud::qzregsub(program.get(), "x", dest + 4);
    EXPECT_EQ(loud::lastError, "damaged regexp fed to regsub");
    EXPECT_STREQ(dest + 4, "######");
}

TEST(qzregerror, PrintsNothing) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    qzregerror("unmatched ()");
    EXPECT_EQ(qzregcomp("("), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr(), "");
}

// "start-end", on which all three operations must agree. The text is in a block
// of its exact size, for the address sanitizer to see each byte too far.
std::string find(const qzTextPattern& pattern, const std::string& text, unsigned length) {
    const std::vector<char> exact(text.c_str(), text.c_str() + text.size() + 1);
    int start = 77, end = 77;
    pattern.bracketBuffer(exact.data(), length, start, end);
    EXPECT_EQ(pattern.findBuffer(exact.data(), length), start);
    EXPECT_EQ(pattern.findEndBuffer(exact.data(), length), static_cast<unsigned>(end));
    return std::to_string(start) + "-" + std::to_string(end);
}

TEST(qzRegEx, SearchesUpToTheNulWhateverTheLength) {
    const qzRegEx pattern(qzStr("(b+)c"));
    EXPECT_EQ(find(pattern, "abbcbc", 0), "1-4");
    EXPECT_EQ(find(pattern, std::string("ab\0bc", 5), 5), "-1-0");
    for (const char* malformed : {"(ab", static_cast<const char*>(nullptr)})
        EXPECT_EQ(find(qzRegEx(malformed), "ab", 2), "-2-0");
    EXPECT_TRUE(qzRegEx("ab").isValid() && !qzRegEx("(ab").isValid());
}

TEST(qzSLinearPattern, AgreesWithNaiveSearch) {
    std::mt19937 random(20);
    for (unsigned round = 0; round < 20000; ++round) {
        // Now and then so long and so monotonous that most places nearly match.
        const unsigned longest = round % 50 ? 40 : 3000;
        const unsigned length = random() % longest, literalLength = 1 + random() % (longest / 8);
        std::string text;
        while (text.size() < length + literalLength)
            text += "a\0\xff"[random() % longest < 30 ? random() % 3 : 0];
        const std::string literal = text.substr(random() % (length + 1), literalLength);
        const std::size_t at = text.substr(0, length).find(literal), end = at + literal.size();
        const qzSLinearPattern pattern(literal.data(), literalLength);
        ASSERT_EQ(find(pattern, text, length),
                  end < at ? "-1-0" : std::to_string(at) + "-" + std::to_string(end))
            << testing::PrintToString(literal) << " in " << testing::PrintToString(text);
    }
}

TEST(qzSLinearPattern, EmptyPatternIsFoundAtTheBeginning) {
    EXPECT_EQ(find(qzSLinearPattern(""), "", 0), "0-0");
    EXPECT_EQ(find(qzSLinearPattern(qzStr()), "abc", 3), "0-0");
}

TEST(qzSLinearPattern, DerivedClassesSeeTheFieldsAndReplaceTheSearch) {
    struct Derived : qzSLinearPattern {
        using qzSLinearPattern::qzSLinearPattern;
        int findBuffer(const char*, unsigned) const override {
            const void* const fields[] = {skip, &pattern, &patternLength};
            return std::is_sorted(fields, fields + 3) ? skip[unsigned{'a'}] + skip[0xff] : -1;
        }
    };
    const Derived pattern(qzStr("a\xe9\0b", 4));
    EXPECT_EQ(find(pattern, "ab", 2), "7-11");
}

TEST(qzIsRegEx, KnowsItsCharactersAndNoOthers) {
    EXPECT_STREQ(regexpchars, ".+*^$(){}[]");
    for (int c = 1; c < 256; ++c) {
        const char text[] = {'a', static_cast<char>(c), '\0'};
        EXPECT_EQ(qzIsRegEx(text), std::strchr(regexpchars, c) != nullptr) << c;
    }
}

} // namespace
