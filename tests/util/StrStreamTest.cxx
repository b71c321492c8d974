#include "util/Str.h"

#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

// The index of the delimiter word belongs to the whole process: each test that
// reads starts as if no stream had ever been given a delimiter.
class FreshDelimiterIndex {
  public:
    FreshDelimiterIndex() : saved(qzStr::delim_idx) { qzStr::delim_idx = -1; }
    ~FreshDelimiterIndex() { qzStr::delim_idx = saved; }

  private:
    const int saved;
};

TEST(qzStr, LinesOfEveryLengthAreReadWholeAndLoopsEnd) {
    const FreshDelimiterIndex fresh;
    std::string stored;
    std::vector<std::string> lines;
    for (unsigned length : {0, 1, 8, 9, 10, 11, 0, 0, 19, 20, 21, 1000, 3}) {
        lines.push_back(' ' + std::string(length, static_cast<char>('a' + lines.size())));
        lines.push_back(std::string(length, '\t'));
    }
    for (const std::string& line : lines)
        stored += line + '\n';
    for (const char* lastLine : {"", "not terminated"}) {
        std::istringstream in(stored + lastLine);
        qzStr s("what was there before");
        for (const std::string& line : lines) {
            ASSERT_TRUE(in >> s);
            EXPECT_TRUE(in.good());
            EXPECT_EQ(s, line.c_str());
        }
        if (*lastLine) {
            EXPECT_TRUE(in >> s);
            EXPECT_TRUE(in.eof());
            EXPECT_EQ(s, lastLine);
        }
        EXPECT_FALSE(in >> s);
        EXPECT_EQ(s.length(), 0u);
    }
}

TEST(qzStr, ExtractionKeepsNulsAndConsumesOneDelimiter) {
    const FreshDelimiterIndex fresh;
    std::istringstream in(std::string("a\0b\n\ncd", 7));
    qzStr s;
    in >> s;
    EXPECT_EQ(s, qzStr("a\0b", 3));
    in >> s;
    EXPECT_EQ(s, "");
    EXPECT_EQ(s.data, &qzStr::emptyString);
    EXPECT_TRUE(in.good());
    EXPECT_EQ(in.peek(), 'c');
}

TEST(qzStr, EachStreamHasItsOwnDelimiter) {
    const FreshDelimiterIndex fresh;
    std::istringstream first("a;b\n;c"), second("a;b\xff-");
    _delimiter(second, '\xff'); // negative where char is signed
    const int index = qzStr::delim_idx;
    qzStr s;
    _delimiter(first, ';') >> s;
    EXPECT_EQ(qzStr::delim_idx, index);
    EXPECT_EQ(s, "a");
    second >> s;
    EXPECT_EQ(s, "a;b");
    first >> s;
    EXPECT_EQ(s, "b\n");
    _delimiter(second, 'x') >> s;
    EXPECT_EQ(s, "-");
}

TEST(qzStr, StreamsWithoutDelimiterReadToNulOnceOneIsSet) {
    const FreshDelimiterIndex fresh;
    const std::string stored("a\nb\0c\n", 6);
    std::istringstream before(stored), after(stored), other;
    qzStr s;
    before >> s;
    EXPECT_EQ(s, "a");
    _delimiter(other, ';');
    after >> s;
    EXPECT_EQ(s, "a\nb");
    after >> s;
    EXPECT_EQ(s, "c\n");
    before >> s; // a stream that was being read by lines changes, too
    EXPECT_EQ(s, "b");
}

TEST(qzStr, OutputStopsAtTheFirstNul) {
    std::ostringstream out;
    out << qzStr("ab\0c", 4) << qzStr() << qzStr("d");
    EXPECT_EQ(out.str(), "abd");
}

} // namespace
