#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "regex/IsRegEx.h"
#include "regex/RegEx.h"
#include "regex/SLinearPattern.h"
#include "util/Str.h"

namespace {

struct Found {
    int start;
    int end;
};
bool operator==(const Found& a, const Found& b) { return a.start == b.start && a.end == b.end; }
std::ostream& operator<<(std::ostream& out, const Found& f) {
    return out << f.start << '-' << f.end;
}

// The bounds, on which all three operations must agree. The text is in a block
// of its exact size, for the address sanitizer to see each byte too far.
Found find(const qzTextPattern& pattern, const std::string& text, unsigned length) {
    const std::vector<char> exact(text.c_str(), text.c_str() + text.size() + 1);
    Found found{77, 77};
    pattern.bracketBuffer(exact.data(), length, found.start, found.end);
    EXPECT_EQ(pattern.findBuffer(exact.data(), length), found.start);
    EXPECT_EQ(pattern.findEndBuffer(exact.data(), length), static_cast<unsigned>(found.end));
    return found;
}
Found find(const qzTextPattern& pattern, const std::string& text) {
    return find(pattern, text, static_cast<unsigned>(text.size()));
}

const Found noMatch{-1, 0}, unusable{-2, 0};

TEST(qzTextPattern, SlotOrder) {
    const auto slot = [](auto member) {
        std::size_t words[2];
        std::memcpy(words, &member, sizeof words);
        return (words[0] - 1) / sizeof(void*); // the destructor takes entries 0 and 1
    };
    EXPECT_EQ(slot(&qzTextPattern::findBuffer), 2u);
    EXPECT_EQ(slot(&qzTextPattern::findEndBuffer), 3u);
    EXPECT_EQ(slot(&qzTextPattern::bracketBuffer), 4u);
}

TEST(qzTextPattern, LastReferenceDestroysTheWholePattern) {
    qzTextPattern* const patterns[] = {new qzRegEx("a+"), new qzSLinearPattern("aa")};
    for (qzTextPattern* pattern : patterns) {
        pattern->addRef();
        EXPECT_EQ(find(*pattern, "baa"), (Found{1, 3}));
        pattern->delRef(); // for the leak checker to judge
    }
}

TEST(qzRegEx, BoundsAreThoseOfTheWholeMatch) {
    const qzRegEx pattern(qzStr("(b+)c"));
    ASSERT_TRUE(pattern.isValid());
    EXPECT_EQ(find(pattern, "abbcbc"), (Found{1, 4}));
    EXPECT_EQ(find(pattern, "abb"), noMatch) << "bounds of the search before";
    EXPECT_EQ(find(qzRegEx("x*"), "abc"), (Found{0, 0}));
    EXPECT_EQ(find(qzRegEx("$"), "abc"), (Found{3, 3}));
}

TEST(qzRegEx, SearchesUpToTheNulWhateverTheLength) {
    const qzRegEx pattern("c+");
    EXPECT_EQ(find(pattern, "abcc", 0), (Found{2, 4}));
    EXPECT_EQ(find(pattern, "abcc", 1000), (Found{2, 4}));
    EXPECT_EQ(find(pattern, std::string("ab\0cc", 5)), noMatch);
}

TEST(qzRegEx, MalformedIsUnusableAndNotMerelyUnmatched) {
    for (const char* malformed : {"(ab", "ab)", "*", static_cast<const char*>(nullptr)}) {
        SCOPED_TRACE(malformed ? malformed : "null");
        const qzRegEx pattern(malformed);
        EXPECT_FALSE(pattern.isValid());
        EXPECT_EQ(find(pattern, "ab"), unusable);
    }
}

TEST(qzSLinearPattern, AgreesWithNaiveSearch) {
    std::mt19937 random(20);
    const char alphabet[] = {'a', 'b', '\0', '\x80', '\xff'};
    const auto randomText = [&](unsigned length, unsigned letters) {
        std::string text(length, '\0');
        for (char& c : text)
            c = alphabet[random() % letters];
        return text;
    };
    unsigned matches = 0;
    for (int round = 0; round < 20000; ++round) {
        const unsigned letters = 1 + random() % sizeof alphabet;
        const std::string literal = randomText(1 + random() % 6, letters);
        const std::string text = randomText(random() % 30, letters);
        const unsigned length = random() % (text.size() + 1);
        const qzSLinearPattern pattern(literal.data(), static_cast<unsigned>(literal.size()));
        const std::size_t at = text.substr(0, length).find(literal);
        const Found expected =
            at == std::string::npos ? noMatch : Found{int(at), int(at + literal.size())};
        ASSERT_EQ(find(pattern, text, length), expected)
            << testing::PrintToString(literal) << " in " << testing::PrintToString(text);
        matches += at != std::string::npos;
    }
    EXPECT_GT(matches, 5000u) << "the texts no longer suit the patterns";
}

TEST(qzSLinearPattern, EmptyPatternIsFoundAtTheBeginning) {
    EXPECT_EQ(find(qzSLinearPattern(""), ""), (Found{0, 0}));
    EXPECT_EQ(find(qzSLinearPattern(qzStr()), "abc"), (Found{0, 0}));
}

TEST(qzSLinearPattern, KeepsNulsOfACountedPatternInACopyOfItsOwn) {
    char counted[] = "b\0c";
    const qzSLinearPattern byLength(counted, 3), byString(qzStr(counted, 3)), byNul(counted);
    std::memset(counted, 'x', sizeof counted);
    const std::string text("abb\0c", 5);
    EXPECT_EQ(find(byLength, text), (Found{2, 5}));
    EXPECT_EQ(find(byString, text), (Found{2, 5}));
    EXPECT_EQ(find(byNul, text), (Found{1, 2}));
}

TEST(qzSLinearPattern, DerivedClassesSeeTheFieldsAndReplaceTheSearch) {
    struct Derived : qzSLinearPattern {
        using qzSLinearPattern::qzSLinearPattern;
        int findBuffer(const char*, unsigned) const override { return 5; }
        void check() const {
            EXPECT_EQ(skip['a'], 3);
            EXPECT_EQ(skip['b'], 1) << "the final b must not count";
            EXPECT_EQ(skip[0xe9], 2);
            EXPECT_EQ(skip[0xff], 4);
            static_assert(sizeof skip == 1024, "256 distances of 32 bits");
            const void* const fields[] = {skip, &pattern, &patternLength};
            EXPECT_TRUE(fields[0] < fields[1] && fields[1] < fields[2]);
        }
    };
    const Derived pattern("a\xe9"
                          "bb");
    pattern.check();
    EXPECT_EQ(find(pattern, "abc"), (Found{5, 9}));
}

TEST(qzIsRegEx, KnowsItsCharactersAndNoOthers) {
    EXPECT_STREQ(regexpchars, ".+*^$(){}[]");
    for (int c = 1; c < 256; ++c) {
        const std::string text = std::string("ab") + static_cast<char>(c) + "d";
        const bool expected = std::string(".+*^$(){}[]").find(static_cast<char>(c)) < 11;
        EXPECT_EQ(qzIsRegEx(text.c_str()), expected) << text;
    }
    EXPECT_FALSE(qzIsRegEx(""));
}

} // namespace
