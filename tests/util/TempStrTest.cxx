#include "util/TempStr.h"

#include <string>

#include <gtest/gtest.h>

#include "tests/support/AllocationCounter.h"

namespace {

std::string text(const qzTempStr& temp) {
    EXPECT_EQ(temp.data[temp.length()], '\0');
    return std::string(temp.data, temp.length());
}

bool inObject(const qzTempStr& temp) { return temp.data == temp.indata; }

std::string letters(unsigned length) {
    std::string made;
    while (made.size() < length)
        made += static_cast<char>('a' + made.size() % 26);
    return made;
}

// Every split of the lengths around the edge, built at once and by concat().
TEST(qzTempStr, NinetyNineCharactersStayInTheObject) {
    for (unsigned length : {0u, 1u, 98u, 99u, 100u, 101u, 5000u}) {
        const std::string whole = letters(length);
        for (unsigned split : {0u, 1u, 50u, 98u, 99u, 100u, length}) {
            if (split > length) continue;
            SCOPED_TRACE(testing::Message() << split << " of " << length);
            const char* const rest = whole.c_str() + split;
            const qzTempStr built(whole.c_str(), split, rest, length - split);
            EXPECT_EQ(text(built), whole);
            EXPECT_EQ(inObject(built), length <= 99);
            qzTempStr grown(whole.c_str(), split, "", 0);
            EXPECT_EQ(&grown.concat(rest, length - split), &grown);
            EXPECT_EQ(text(grown), whole);
            EXPECT_EQ(inObject(grown), length <= 99);
        }
    }
}

TEST(qzTempStr, CopyMovesToTheHeapOneEarlier) {
    for (unsigned length : {0u, 98u, 99u, 100u, 5000u}) {
        SCOPED_TRACE(length);
        const std::string whole = letters(length);
        const qzTempStr original(whole.c_str(), length, "", 0);
        qzTempStr copy(original);
        EXPECT_EQ(inObject(copy), length <= 98);
        EXPECT_EQ(text(copy), whole);
        // The copy of 99 is on the heap with a length that would fit the object.
        copy.concat("", 0);
        copy.concat("xyz", 2);
        EXPECT_EQ(inObject(copy), length + 2 <= 99);
        EXPECT_EQ(text(copy), whole + "xy");
        EXPECT_EQ(text(original), whole);
    }
}

TEST(qzTempStr, ConcatMayTakeItsOwnText) {
    for (unsigned length : {3u, 49u, 50u, 99u, 100u, 3000u}) {
        SCOPED_TRACE(length);
        const std::string whole = letters(length);
        qzTempStr temp(whole.c_str(), length, "", 0);
        temp.concat(temp.data, temp.length());
        EXPECT_EQ(text(temp), whole + whole);
        temp.concat(temp.data + 2, length);
        EXPECT_EQ(text(temp), whole + whole + (whole + whole).substr(2, length));
    }
}

TEST(qzTempStr, ChainsAppendToOneTemporaryAndKeepNuls) {
    using namespace std::string_literals;
    const qzStr a("a\0b", 3), empty;
    EXPECT_EQ(text(a | a), "a\0ba\0b"s);
    EXPECT_EQ(text(a | "c"), "a\0bc"s);
    EXPECT_EQ(text("c" | a), "ca\0b"s);
    qzTempStr temp = a | "c";
    EXPECT_EQ(&(temp | a | "d" | empty), &temp);
    EXPECT_EQ(text(temp), "a\0bca\0bd"s);
    qzStr assigned("something longer than the result");
    assigned = temp;
    EXPECT_EQ(assigned, qzStr("a\0bca\0bd", 8));
    EXPECT_EQ(qzStr(temp), assigned);
}

TEST(qzTempStr, ShortChainsCostTheOneAllocationOfTheirString) {
    if (const char* reason = AllocationCounter::obstacle()) GTEST_SKIP() << reason;
    for (unsigned length : {1u, 98u, 99u, 100u}) {
        SCOPED_TRACE(length);
        const qzStr a(letters(length / 3).c_str()), b(letters(length - 2 * (length / 3)).c_str());
        const AllocationCounter counter;
        const qzStr s(a | b | a);
        const AllocationCounts cost = counter.counts();
        EXPECT_EQ(s.length(), length);
        EXPECT_EQ(cost.allocations, length <= 99 ? 1u : 2u);
        EXPECT_EQ(cost.resizes, 0u);
        EXPECT_EQ(cost.releases, length <= 99 ? 0u : 1u);
    }
}

} // namespace
