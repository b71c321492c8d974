#include "util/Str.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

namespace {

// Against a search of one byte after the other; `given` is the set as the string
// takes it: bytes and their number, or one byte.
template <class... Given>
void expectFinds(const qzStr& s, const std::string& set, unsigned pos, Given... given) {
    const auto in = [&](unsigned i) { return set.find(s[i]) != std::string::npos; };
    unsigned next = pos, skip = pos, nextR = pos, skipR = pos, after = pos, before = pos;
    while (next < s.length() && !in(next))
        ++next;
    while (skip < s.length() && in(skip))
        ++skip;
    while (nextR > 0 && !in(nextR - 1))
        --nextR;
    while (skipR > 0 && in(skipR - 1))
        --skipR;
    ASSERT_EQ(s.next(pos, given...), next);
    ASSERT_EQ(s.skip(pos, given...), skip);
    ASSERT_EQ(s.nextR(pos, given...), nextR);
    ASSERT_EQ(s.skipR(pos, given...), skipR);
    ASSERT_EQ(s.token(after, given...), s.extract(pos, next - pos));
    ASSERT_EQ(after, s.skip(next, given...));
    ASSERT_EQ(s.tokenR(before, given...), s.extract(nextR, pos - nextR));
    ASSERT_EQ(before, s.skipR(nextR, given...));
}

TEST(qzStr, SearchesAgreeWithAByteByByteModel) {
    using namespace std::string_literals;
    // Neighbours of the word edges of a bit set, a NUL and bytes above 0x7f.
    const std::string alphabet = "\0\x1f\x20\x3f\x40\x7f\x80\xa0\xff"s;
    std::mt19937 random(2);
    const auto drawn = [&](unsigned size) {
        std::string made;
        while (made.size() < size)
            made += alphabet[random() % alphabet.size()];
        return made;
    };
    for (int round = 0; round < 3000; ++round) {
        const std::string text = drawn(random() % 24), set = drawn(1 + random() % 4);
        const qzStr s(text.data(), text.size());
        for (unsigned pos = 0; pos <= s.length(); ++pos) {
            ASSERT_NO_FATAL_FAILURE(expectFinds(s, set, pos, set.data(), set.size()));
            ASSERT_NO_FATAL_FAILURE(expectFinds(s, set.substr(0, 1), pos, set[0]));
        }
    }
}

TEST(qzStr, SetsWithoutALengthEndAtTheirNulAndMayBeEmpty) {
    EXPECT_EQ(qzStr("abc").next(0, "ca", 1), 2u);
    EXPECT_EQ(qzStr("abc").next(1, "ca"), 2u);
    EXPECT_EQ(qzStr("abc").next(0, ""), 3u);
    EXPECT_EQ(qzStr("abc").skipR(3, ""), 3u);
    EXPECT_TRUE(quickFind('\0', "a\0b", 2));
    EXPECT_FALSE(quickFind('a', "abc", 0));
    EXPECT_EQ(qzStr("xa yx").trim("yx"), "a ");
    EXPECT_EQ(qzStr("xa yx").trimRight("yx"), "xa ");
    EXPECT_EQ(qzStr("   ").trim(" "), "");
}

} // namespace
