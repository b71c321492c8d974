#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "regex/IsRegEx.h"
#include "regex/RegEx.h"
#include "regex/SLinearPattern.h"
#include "util/Str.h"

namespace {

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
    qzTextPattern* const pattern = new qzRegEx(qzStr("(b+)c"));
    EXPECT_EQ(find(*pattern, "abbcbc", 0), "1-4");
    EXPECT_EQ(find(*pattern, std::string("ab\0bc", 5), 5), "-1-0");
    pattern->addRef();
    pattern->delRef(); // for the leak checker to judge
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
            return std::is_sorted(fields, fields + 3) ? skip['a'] + skip[0xff] : -1;
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
