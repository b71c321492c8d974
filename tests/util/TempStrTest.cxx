#include "util/TempStr.h"

#include <string>

#include <gtest/gtest.h>

#include "tests/support/AllocationCounter.h"

namespace {

void expectText(const qzTempStr& temp, const std::string& text, bool inObject) {
    EXPECT_EQ(std::string(temp.data, temp.length() + 1), text + '\0');
    EXPECT_EQ(temp.data == temp.indata, inObject);
}

TEST(qzTempStr, CopyMovesToTheHeapOneEarlier) {
    for (unsigned length : {0u, 49u, 50u, 98u, 99u, 100u, 5000u}) {
        SCOPED_TRACE(length);
        const std::string half(length / 2, 'x'), rest(length - length / 2, 'y');
        const qzTempStr built(half.data(), half.size(), rest.data(), rest.size());
        expectText(built, half + rest, length <= 99);
        qzTempStr grown(half.data(), half.size(), "", 0), copy(built);
        EXPECT_EQ(&grown.concat(rest.data(), rest.size()), &grown);
        expectText(grown, half + rest, length <= 99);
        expectText(copy, half + rest, length <= 98);
        copy.concat("", 0); // a heap block that would fit the object
        copy.concat(copy.data, length);
        expectText(copy, half + rest + half + rest, length <= 49);
    }
}

TEST(qzTempStr, ShortChainsCostTheOneAllocationOfTheirString) {
    if (const char* reason = AllocationCounter::obstacle()) GTEST_SKIP() << reason;
    const qzStr a("a\0b", 3);
    const AllocationCounter counter;
    const qzStr s(a | "c" | a | "");
    const AllocationCounts cost = counter.counts();
    EXPECT_EQ(s, qzStr("a\0bca\0b", 7));
    EXPECT_EQ(cost.allocations, 1u);
    EXPECT_EQ(cost.resizes, 0u);
    EXPECT_EQ(qzStr("c" | a), qzStr("ca\0b", 4));
    EXPECT_EQ(qzStr(a | a), qzStr("a\0ba\0b", 6));
}

} // namespace
