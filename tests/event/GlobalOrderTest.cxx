#include "event/GlobalOrder.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "event/Exec.h"
#include "event/Toolkit.h"

namespace {

std::string calls;

template <char Name> void log() { calls += Name; }

const int ours = qzOrderedGlobal::toolkit, theirs = qzOrderedGlobal::application;
qzOrderedGlobal again(qzInitializeToolkit, nullptr, theirs); // which is under way
qzOrderedGlobal applications(log<'a'>, log<'A'>, nullptr, theirs);
qzOrderedGlobal others(log<'o'>, log<'O'>, nullptr, 7);
qzOrderedGlobal librarys(log<'l'>, log<'L'>, nullptr, ours);

// In a process of its own: each phase happens once.
[[noreturn]] void endAndStartTwice() {
    qzExec programs;
    qz_theExecutive = &programs;
    for (int i = 0; i < 2; ++i) {
        qzCleanupGlobalOrderings();
        qzInitializeToolkit();
    }
    if (qz_theExecutive != &programs) calls += " executive replaced";
    std::fputs(calls.c_str(), stderr);
    std::_Exit(0);
}

} // namespace

TEST(qzGlobalOrderDeathTest, PhasesRunOnceInWhicheverOrder) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(endAndStartTwice(), testing::ExitedWithCode(0), "^OALlao$");
}

// Of these b needs a and c needs b; c has no init function, b and x no other.
TEST(qzGlobalOrder, SortIsOnePassOfSwaps) {
    static qzOrderedGlobal a(log<'a'>, log<'A'>, nullptr, theirs), *needsA[] = {&a, nullptr};
    static qzOrderedGlobal b(log<'b'>, needsA, theirs), *needsB[] = {&b, nullptr};
    static qzOrderedGlobal c(nullptr, log<'C'>, needsB, theirs), x(log<'x'>, nullptr, theirs);
    const struct {
        std::vector<qzOrderedGlobal*> registered;
        const char* run;
    } rows[] = {
        {{&b, &x, &a}, "axbA"}, // not xab: the two are exchanged
        {{&c, &b, &a}, "abCA"},
        {{&c, &a, &b}, "baCA"}, // b comes up front when a has been passed
    };
    for (const auto& row : rows) {
        qzGlobalOrder order;
        for (qzOrderedGlobal* global : row.registered) {
            order.add(global);
            if (global == row.registered[0]) order.sort();
        }
        calls.clear();
        order.create();
        order.destroy();
        EXPECT_EQ(calls, row.run);
    }
}
