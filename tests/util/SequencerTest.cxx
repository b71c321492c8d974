#include "util/Sequencer.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

class ProbeSequencer : public qzSequencer {
  public:
    explicit ProbeSequencer(const std::vector<unsigned>& taken = {}) {
        for (unsigned n : taken)
            EXPECT_EQ((*this)(n), n);
    }
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
        {{10}, {9, 8, 7, 6, 5, 4, 3, 2, 1, 0, 11}, " 0+12"},
        {{9, 0, 2, 4}, {1, 3, 5}, " 0+6 9+1"}, // absorbs one run at a time
        {{0, 1, 2, 3, 5, 6, 4}, {}, " 0+7"},
        {{0, 1, 10, 7}, {}, " 0+2 7+1 10+1"},
        {{UINT_MAX, UINT_MAX - 1, 0}, {}, " 0+1 4294967294+2"}, // no wrapping round
        {{0, 1, 2, 3, 4, 3}, {5}, " 0+6 3+1"},                  // recorded twice
        {{0, 1, 2, 3, 4, 9, 3}, {}, " 0+5 3+1 9+1"},
    };
    for (const auto& row : rows) {
        ProbeSequencer sequencer(row.taken);
        std::vector<unsigned> numbers;
        while (numbers.size() < row.next.size())
            numbers.push_back(sequencer());
        EXPECT_EQ(numbers, row.next);
        EXPECT_EQ(sequencer.runs(), row.runs);
    }
}

TEST(qzSequencer, RunsAreThoseOfTheSetOfTakenNumbers) {
    std::mt19937 random(2801);
    for (int round = 0; round < 40; ++round) {
        ProbeSequencer sequencer;
        std::set<unsigned> taken;
        for (int step = 0; step < 100; ++step) {
            unsigned n = random() % 200 + 20;
            if (random() % 4 == 0) {
                n = 0;
                if (taken.size() && !taken.count(0)) n = *taken.begin() - 1;
                while (taken.count(n))
                    ++n;
                ASSERT_EQ(sequencer(), n);
            } else if (!taken.count(n)) {
                ASSERT_EQ(sequencer(n), n);
            }
            taken.insert(n);

            std::string runs;
            for (unsigned start : taken) {
                unsigned length = 1;
                while (taken.count(start + length))
                    ++length;
                if (taken.count(start - 1)) continue;
                runs += " " + std::to_string(start) + "+" + std::to_string(length);
            }
            ASSERT_EQ(sequencer.runs(), runs);
        }
    }
}

} // namespace
