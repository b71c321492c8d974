#include "util/StackBuffer.h"

#include <csignal>
#include <string>

#include <gtest/gtest.h>

namespace {

TEST(qzStackBuffer, GrowsByTheStepOrByWhatIsMissing) {
    const struct {
        unsigned growBy, puts[3], capacity;
    } rows[] = {
        {0, {1000, 0, 0}, 1000}, // full, not grown; 0 means steps of 500
        {0, {1, 1499, 0}, 1500},    {0, {1, 1500, 0}, 1501},    {10, {1000, 10, 1}, 1020},
        {10, {1000, 1, 500}, 1501}, {5000, {1000, 1, 1}, 6000},
    };
    for (const auto& row : rows) {
        qzStackBuffer source(row.growBy), assigned;
        std::string model;
        for (unsigned count : row.puts) {
            const std::string part(count, static_cast<char>(count));
            source.put(part.data(), count);
            model += part;
        }
        assigned.grow(9000);
        assigned = source;
        qzStackBuffer copy(source);
        source.put(source.data(), source.length()); // its own bytes, which move
        source.addc('x');
        EXPECT_EQ(std::string(source.data(), source.length()), model + model + 'x');
        for (qzStackBuffer* made : {&copy, &assigned}) {
            EXPECT_EQ(std::string(made->data(), made->length()), model);
            EXPECT_EQ(made->capacity(), row.capacity);
            EXPECT_EQ(made->base == made->inbuf, row.capacity == 1000);
            EXPECT_EQ(made->growBy, source.growBy);
        }
    }
}

TEST(qzStackBufferDeathTest, GrowthThatNoPointerCanSpanIsFatal) {
    qzStackBuffer buffer;
    EXPECT_EXIT(buffer.grow(0xffffffffu), testing::KilledBySignal(SIGABRT), "^out of memory\n$");
}

} // namespace
