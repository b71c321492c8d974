#include "util/Fatal.h"

#include <csignal>
#include <cstdio>

#include <gtest/gtest.h>

#include "util/Debug.h"
#include "util/Str.h"

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
