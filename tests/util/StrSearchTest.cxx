#include "util/Str.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

namespace {

TEST(qzStr, SearchesReturnLengthOrZeroWhenNothingIsFound) {
    const qzStr abc("abc");
    EXPECT_EQ(abc.next(0, 'x'), 3u);
    EXPECT_EQ(abc.next(0, '\0'), 3u); // the terminator is no byte of the text
    EXPECT_EQ(abc.nextR(3, 'x'), 0u);
    EXPECT_EQ(abc.nextR(3, 'b'), 2u);
    // An empty set holds nothing: skipping it stops at once.
    EXPECT_EQ(abc.next(0, ""), 3u);
    EXPECT_EQ(abc.skip(0, ""), 0u);
    EXPECT_EQ(abc.nextR(3, ""), 0u);
    EXPECT_EQ(abc.skipR(3, ""), 3u);
    // Only the first n bytes of a set count; 0 is all of them.
    EXPECT_EQ(abc.next(0, "ca", 1), 2u);
    EXPECT_EQ(abc.next(0, "ca", 0), 0u);
    EXPECT_TRUE(quickFind('\0', "a\0b", 2));
    EXPECT_FALSE(quickFind('b', "a\0b", 2));
    EXPECT_FALSE(quickFind('a', "abc", 0));
}

TEST(qzStr, TokensKeepTheLeadingEmptyOneAndSwallowRuns) {
    const struct {
        const char* text;
        const char* forward; // each token followed by '|'
        const char* backward;
    } rows[] = {{",a,,b", "|a|b|", "b|a|"},    {"a", "a|", "a|"},
                {"a,b,,", "a|b|", "|b|a|"},    {",", "|", "|"},
                {"a b,c", "a b|c|", "c|a b|"}, {"", "", ""}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const qzStr s(row.text);
        std::string forward, backward;
        for (unsigned pos = 0; pos < s.length();)
            (forward += s.token(pos, ',').c_str()) += '|';
        for (unsigned pos = s.length(); pos;)
            (backward += s.tokenR(pos, ',').c_str()) += '|';
        EXPECT_EQ(forward, row.forward);
        EXPECT_EQ(backward, row.backward);
    }
}

TEST(qzStr, TrimOfNothingButBlanksIsEmpty) {
    const struct {
        const char* text;
        const char* set;
        const char* trimmed;
        const char* right;
    } rows[] = {{"  a b  ", " ", "a b", "  a b"},
                {"   ", " ", "", ""},
                {"", " ", "", ""},
                {"abc", "", "abc", "abc"},
                {"xayb", "xyb", "a", "xa"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(qzStr(row.text).trim(row.set), row.trimmed);
        EXPECT_EQ(qzStr(row.text).trimRight(row.set), row.right);
    }
}

// The model says what the words say, one byte at a time.
unsigned slowForward(const std::string& s, unsigned pos, const std::string& set, bool wanted) {
    while (pos < s.size() && (set.find(s[pos]) != std::string::npos) != wanted)
        ++pos;
    return pos;
}

unsigned slowBackward(const std::string& s, unsigned pos, const std::string& set, bool wanted) {
    while (pos > 0 && (set.find(s[pos - 1]) != std::string::npos) != wanted)
        --pos;
    return pos;
}

TEST(qzStr, SearchesAgreeWithAByteByByteModel) {
    using namespace std::string_literals;
    // Neighbours of the word edges of a bit set, a NUL and bytes above 0x7f.
    const std::string alphabet = "\0\x1f\x20\x3f\x40\x7f\x80\xa0\xff"s;
    std::mt19937 random(2);
    const auto text = [&](unsigned size) {
        std::string made;
        while (size--)
            made += alphabet[random() % alphabet.size()];
        return made;
    };
    for (int round = 0; round < 3000; ++round) {
        const std::string model = text(random() % 24);
        const std::string set = text(1 + random() % 4);
        const qzStr s(model.data(), static_cast<unsigned>(model.size()));
        const char* const bytes = set.data();
        const unsigned n = static_cast<unsigned>(set.size());
        const std::string one(1, set[0]);
        for (unsigned pos = 0; pos <= model.size(); ++pos) {
            SCOPED_TRACE(testing::Message() << "round " << round << ", pos " << pos);
            ASSERT_EQ(s.next(pos, bytes, n), slowForward(model, pos, set, true));
            ASSERT_EQ(s.skip(pos, bytes, n), slowForward(model, pos, set, false));
            ASSERT_EQ(s.nextR(pos, bytes, n), slowBackward(model, pos, set, true));
            ASSERT_EQ(s.skipR(pos, bytes, n), slowBackward(model, pos, set, false));
            ASSERT_EQ(s.next(pos, set[0]), slowForward(model, pos, one, true));
            ASSERT_EQ(s.skip(pos, set[0]), slowForward(model, pos, one, false));
            ASSERT_EQ(s.nextR(pos, set[0]), slowBackward(model, pos, one, true));
            ASSERT_EQ(s.skipR(pos, set[0]), slowBackward(model, pos, one, false));

            const unsigned end = slowForward(model, pos, set, true);
            unsigned at = pos;
            ASSERT_EQ(s.token(at, bytes, n), s.extract(pos, end - pos));
            ASSERT_EQ(at, slowForward(model, end, set, false));
            const unsigned start = slowBackward(model, pos, set, true);
            at = pos;
            ASSERT_EQ(s.tokenR(at, bytes, n), s.extract(start, pos - start));
            ASSERT_EQ(at, slowBackward(model, start, set, false));
        }
    }
}

} // namespace
