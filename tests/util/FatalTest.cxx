#include "util/Fatal.h"

#include <csignal>
#include <cstdio>
#include <string>

#include <gtest/gtest.h>

#include "util/Debug.h"
#include "util/Str.h"

namespace {

TEST(qzFatalDeathTest, WritesTheMessageAndANewlineThenAborts) {
    EXPECT_EXIT(qzFatal("Can't convert from %d to %s", 3, "7%"), testing::KilledBySignal(SIGABRT),
                "^Can't convert from 3 to 7%\n$");
    const std::string longer(5000, 'x');
    EXPECT_EXIT(qzFatal("%s.", longer.c_str()), testing::KilledBySignal(SIGABRT), "^x+\\.\n$");
}

// abort() does not flush: the message must already be out.
TEST(qzFatalDeathTest, FlushesABufferedStandardError) {
    static char buffer[4096];
    EXPECT_EXIT(std::setvbuf(stderr, buffer, _IOFBF, sizeof buffer);
                qzFatal("bad news"), testing::KilledBySignal(SIGABRT), "^bad news\n$");
}

TEST(qzDebug, LeavesTheOptionsAlone) {
    qzStr option("-verbose");
    qzDebug(1).parseOption(option);
    EXPECT_EQ(option, "-verbose");
}

} // namespace
