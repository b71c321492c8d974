#include "regex/RegEx.h"
#include "util/BoundingBox.h"
#include "util/Debug.h"
#include "util/Fatal.h"
#include "util/Sequencer.h"
#include "util/StackBuffer.h"
#include "util/Str.h"
#include "util/VersionStamp.h"

#include <csignal>
#include <fstream>

#include <gtest/gtest.h>

#include <dlfcn.h>

namespace {

// abort() does not flush: the message must be out before it.
TEST(qzFatalDeathTest, WritesTheWholeMessageThenAborts) {
    EXPECT_EXIT(std::setvbuf(stderr, nullptr, _IOFBF, BUFSIZ);
                qzFatal("Can't convert from %d to %s", 3, "7%"), testing::KilledBySignal(SIGABRT),
                "^Can't convert from 3 to 7%\n$");
}

TEST(qzDebug, LeavesTheOptionsAlone) {
    qzStr option("-verbose");
    qzDebug(1).parseOption(option);
    EXPECT_EQ(option, "-verbose");
}

TEST(VersionStamp, LineIsNameIn33ColumnsVersionAndStamp) {
    char line[128];
    testing::internal::CaptureStdout();
    EXPECT_EQ(liborvikqzds_print_verid(), liborvikqzds_sprintf_verid(line));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), line);
    const qzRegEx format("^liborvikqzds                      [0-9]+\\.[0-9]+\\.[0-9]+ \\([-0-9]+ "
                         "[:0-9]+ UTC\\)\\\n$");
    EXPECT_EQ(format.findBuffer(line, 0), 0) << line;
}

// Put together here, as the file of the tests may have the library inside.
TEST(VersionStamp, LibraryCarriesTheLabelledFormat) {
    Dl_info library;
    ASSERT_NE(dladdr(reinterpret_cast<void*>(&liborvikqzds_print_verid), &library), 0);
    std::ifstream file(library.dli_fname, std::ios::binary);
    const std::string content((std::istreambuf_iterator<char>(file)), {});
    EXPECT_NE(content.find(std::string("%-*s %s \"") + "%s\" (%s)\n"), std::string::npos);
}

using Box = qzBoundingBox;

void expectBox(const Box& box, int x, int y, int width, int height) {
    EXPECT_TRUE(box.x == x && box.y == y && box.width == width && box.height == height)
        << box.x << ' ' << box.y << ' ' << box.width << ' ' << box.height;
}

TEST(qzBoundingBox, BoxesThatTouchDoNotOverlap) {
    const Box a(0, 0, 10, 10);
    expectBox(a.intersect(Box(4, 6, 20, 2)), 4, 6, 6, 2);
    expectBox(Box(4, 6, 20, 2).intersect(a), 4, 6, 6, 2);
    expectBox(a.intersect(Box(10, 9, 5, 5)), 0, 9, 0, 1);
    expectBox(a.intersect(Box(2, -5, 5, 5)), 2, 0, 5, 0);
}

TEST(qzBoundingBox, BoundNarrowsFarEdgeToSixteenBits) {
    expectBox(Box(1, 2, 10, 0).bound(Box(5, 7, 20, 3)), 1, 7, 24, 3); // empty on one axis
    expectBox(Box(5, 7, 20, 3).bound(Box(1, 2, 10, 0)), 1, 7, 24, 3);
    expectBox(Box(1, 2, 0, 0).bound(Box(3, 4, 0, 0)), 3, 4, 0, 0); // the argument's stand
    expectBox(Box(0, 0, 32767, 1).bound(Box(0, 0, 1, 1)), 0, 0, 32767, 1);
    expectBox(Box(0, 0, 32768, 1).bound(Box(0, 0, 1, 1)), 0, 0, 1, 1); // -32768 in 16 bits
    expectBox(Box(70000, 0, 1, 1).bound(Box(70000, 0, 2, 1)), 70000, 0, 4466 - 70000, 1);
}

struct ProbeSequencer : qzSequencer {
    std::string runs() const {
        std::string all;
        for (unsigned i = 0; i < ranges.length(); ++i)
            all += " " + std::to_string(ranges[i].start) + "+" + std::to_string(ranges[i].length);
        return all;
    }
};

TEST(qzSequencer, NumbersGrowTheFirstRun) {
    const struct {
        std::vector<unsigned> taken, next;
        const char* runs;
    } rows[] = {
        {{}, {0, 1, 2}, " 0+3"},
        {{5, 9}, {4, 3, 2, 1, 0, 6, 7, 8, 10}, " 0+11"},
        {{9, 0, 2, 4}, {1, 3, 5}, " 0+6 9+1"}, // absorbs one run at a time
        {{0, 1, 10, 2, 7, 6, 8}, {}, " 0+3 6+3 10+1"},
        {{~0u, ~0u - 1, 0}, {}, " 0+1 4294967294+2"}, // no wrapping round
    };
    for (const auto& row : rows) {
        ProbeSequencer sequencer;
        for (unsigned n : row.taken)
            EXPECT_EQ(sequencer(n), n);
        for (unsigned n : row.next)
            EXPECT_EQ(sequencer(), n);
        EXPECT_EQ(sequencer.runs(), row.runs);
    }
}

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
        }
    }
}

TEST(qzStackBufferDeathTest, GrowthThatNoPointerCanSpanIsFatal) {
    qzStackBuffer buffer;
    EXPECT_EXIT(buffer.grow(0xffffffffu), testing::KilledBySignal(SIGABRT), "^out of memory\n$");
}

} // namespace
