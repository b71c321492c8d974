#include "util/StackBuffer.h"

#include <csignal>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/AllocationCounter.h"

namespace {

std::string bytes(unsigned count) {
    std::string made;
    while (made.size() < count)
        made += static_cast<char>(made.size() * 7 + made.size() / 251);
    return made;
}

std::string content(const qzStackBuffer& buffer) {
    EXPECT_LE(buffer.length(), buffer.capacity());
    return std::string(buffer.data(), buffer.length());
}

TEST(qzStackBuffer, GrowsByTheStepOrByWhatIsMissing) {
    const struct {
        unsigned growBy;
        unsigned puts[3];
        unsigned capacity;
    } rows[] = {
        {0, {1000, 0, 0}, 1000},    // full, not grown
        {0, {1000, 1, 0}, 1500},    // 0 means 500
        {0, {2000, 0, 0}, 2000},    // exactly what is missing
        {0, {1, 1499, 0}, 1500},    // 500 missing: the step
        {0, {1, 1500, 0}, 1501},    // 501 missing
        {10, {1000, 10, 1}, 1020},  // a second step, on the heap
        {10, {1000, 1, 500}, 1501}, // what is missing, on the heap
        {5000, {1000, 1, 1}, 6000},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        qzStackBuffer put(row.growBy);
        std::string model;
        for (unsigned count : row.puts) {
            const std::string part = bytes(count);
            put.put(part.data(), count);
            model += part;
        }
        EXPECT_EQ(put.capacity(), row.capacity);
        EXPECT_EQ(put.base == put.inbuf, row.capacity == 1000);
        EXPECT_EQ(content(put), model);
    }
}

TEST(qzStackBuffer, FirstThousandBytesAllocateNothing) {
    if (const char* reason = AllocationCounter::obstacle()) GTEST_SKIP() << reason;
    const std::string half = bytes(500);
    const AllocationCounter counter;
    {
        qzStackBuffer buffer;
        buffer.put(half.data(), 500);
        for (char c : half)
            buffer.addc(c);
        const qzStackBuffer copy(buffer);
    }
    EXPECT_EQ(counter.counts().allocations, 0u);
}

TEST(qzStackBuffer, CopiesHaveTheirOwnStorageAndTheSourcesStep) {
    for (unsigned used : {0u, 1000u, 1001u, 4000u}) {
        SCOPED_TRACE(used);
        const std::string model = bytes(used);
        qzStackBuffer source(64), assigned;
        source.put(model.data(), used);
        assigned.grow(9000);
        assigned = source;
        const qzStackBuffer copy(source);
        source = static_cast<qzStackBuffer&>(source);
        for (const qzStackBuffer* made : {&copy, &static_cast<const qzStackBuffer&>(assigned)}) {
            EXPECT_EQ(content(*made), model);
            EXPECT_EQ(made->capacity(), source.capacity());
            EXPECT_EQ(made->base == made->inbuf, used <= 1000);
            EXPECT_EQ(made->growBy, 64u);
        }
        EXPECT_EQ(content(source), model);
        source.addc('x');
        EXPECT_EQ(content(copy), model);
    }
}

TEST(qzStackBuffer, PutMayTakeTheBuffersOwnBytes) {
    qzStackBuffer buffer(1);
    std::string model = bytes(300);
    buffer.put(model.data(), 300);
    for (int round = 0; round < 4; ++round) { // in the object, to the heap, on it
        buffer.put(buffer.data() + 7, buffer.length() - 7);
        model += model.substr(7);
        EXPECT_EQ(content(buffer), model);
    }
}

TEST(qzStackBufferDeathTest, GrowthThatNoPointerCanSpanIsFatal) {
    qzStackBuffer buffer;
    EXPECT_EXIT(buffer.grow(0xffffffffu), testing::KilledBySignal(SIGABRT), "^out of memory\n$");
}

} // namespace
