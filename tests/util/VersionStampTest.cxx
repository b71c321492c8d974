#include "util/VersionStamp.h"

#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include <dlfcn.h>

#include "regex/RegEx.h"

namespace {

TEST(VersionStamp, LineIsNameIn33ColumnsVersionAndStamp) {
    char line[128];
    const int written = liborvikqzds_sprintf_verid(line);
    const std::string text(line);
    EXPECT_EQ(written, static_cast<int>(text.size()));
    EXPECT_EQ(text.substr(0, 33), "liborvikqzds                     ");
    const qzRegEx rest("^ [0-9]+\\.[0-9]+\\.[0-9]+ \\([-0-9]+ [:0-9]+ UTC\\)\\\n$");
    ASSERT_TRUE(rest.isValid());
    EXPECT_EQ(rest.findBuffer(line + 33, 0), 0) << line;

    testing::internal::CaptureStdout();
    const int printed = liborvikqzds_print_verid();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), text);
    EXPECT_EQ(printed, written);
}

// Not in the file of the tests, which may have the library inside: it is put
// together here.
TEST(VersionStamp, LibraryCarriesTheLabelledFormat) {
    Dl_info library;
    ASSERT_NE(dladdr(reinterpret_cast<void*>(&liborvikqzds_print_verid), &library), 0);
    std::ifstream file(library.dli_fname, std::ios::binary);
    const std::string content((std::istreambuf_iterator<char>(file)), {});
    std::string format("%-*s %s @%s@ (%s)\n");
    for (char& c : format)
        if (c == '@') c = '"';
    EXPECT_NE(content.find(format), std::string::npos) << library.dli_fname;
}

} // namespace
