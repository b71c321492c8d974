#include "util/Str.h"

#include <sstream>
#include <string>

#include <gtest/gtest.h>

namespace {

// Each test starts as if no stream of the process had been given a delimiter.
void forgetDelimiters() { qzStr::delim_idx = -1; }

TEST(qzStr, LinesOfEveryLengthAreReadWholeAndLoopsEnd) {
    forgetDelimiters();
    const std::string lines[] = {" \t", "", std::string("a\0b", 3), "12345678901", "", "last"};
    std::istringstream in(lines[0] + "\n\n" + lines[2] + '\n' + lines[3] + "\n\nlast");
    qzStr s("what was there before");
    for (const std::string& line : lines) {
        ASSERT_TRUE(in >> s);
        EXPECT_EQ(s, qzStr(line.data(), line.size()));
        EXPECT_EQ(in.eof(), line == "last");
    }
    EXPECT_FALSE(in >> s);
    EXPECT_EQ(s.data, &qzStr::emptyString);
}

TEST(qzStr, StreamsWithoutDelimiterReadToNulOnceOneIsSet) {
    forgetDelimiters();
    std::istringstream before(std::string("a\nb\nb\0c", 7)), other("x;y\xff-");
    qzStr s;
    before >> s;
    EXPECT_EQ(s, "a");
    _delimiter(other, ';') >> s;
    EXPECT_EQ(s, "x");
    before >> s; // also one that was being read by lines
    EXPECT_EQ(s, "b\nb");
    _delimiter(other, '\xff') >> s; // negative where char is signed
    EXPECT_EQ(s, "y");
}

TEST(qzStr, OutputStopsAtTheFirstNul) {
    std::ostringstream out;
    out << qzStr("ab\0c", 4) << qzStr() << qzStr("d");
    EXPECT_EQ(out.str(), "abd");
}

} // namespace
