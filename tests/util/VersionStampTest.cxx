#include "util/VersionStamp.h"

#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include <dlfcn.h>

#include "regex/RegEx.h"

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
