#include "util/Sequencer.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

namespace {

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
        {{UINT_MAX, UINT_MAX - 1, 0}, {}, " 0+1 4294967294+2"}, // no wrapping round
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

} // namespace
