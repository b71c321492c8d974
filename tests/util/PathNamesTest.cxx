#include "util/PathNames.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include <pwd.h>
#include <unistd.h>

#include "util/Companion.h"
#include "util/Path.h"

namespace {

// The text of a result, which is freed.
std::string take(char* result) {
    const std::string text(result ? result : "null");
    std::free(result);
    return text;
}

TEST(qzPath, SplitsAsTheFunctionsOnCStringsDo) {
    const struct {
        const char *path, *directory, *leaf;
    } rows[] = {{"/", "/", ""},        {"//", "/", ""},        {"abc", ".", "abc"},
                {"abc//", ".", "abc"}, {"//abc", "", "abc"},   {"/abc/", "", "abc"},
                {"a//b/", "a", "b"},   {"//a//b", "//a", "b"}, {"a/b c/../x.y", "a/b c/..", "x.y"}};
    for (const auto& row : rows) {
        EXPECT_EQ(take(pathdirname(row.path)), row.directory) << row.path;
        EXPECT_EQ(take(pathbasename(row.path)), row.leaf) << row.path;
        qzPath path(row.path), leaf("longer than the path by far");
        EXPECT_EQ(path.directory(), row.directory) << row.path;
        EXPECT_EQ(path.leaf(), row.leaf) << row.path;
        EXPECT_EQ(path.split(&path, &leaf), 0);
        EXPECT_TRUE(path == row.directory && leaf == row.leaf) << row.path << " as its own output";
    }
    EXPECT_TRUE(!pathdirname(nullptr) && !pathbasename(nullptr) && !pathexpandtilde(nullptr));
    EXPECT_EQ(take(pathdirname("")) + take(pathbasename("")), ".");
}

TEST(pathdirname, OfAFileInTheRootIsEmpty) { EXPECT_EQ(take(pathdirname("/abc")), ""); }

TEST(qzPath, PartsAreNoLongerThanThePath) {
    qzPath directory("x"), leaf("y");
    EXPECT_EQ(qzPath().split(&directory, &leaf), -1);
    EXPECT_TRUE(directory == "" && leaf == "");
    EXPECT_EQ(qzStr::emptyString, 0) << "what every empty string points at";
    EXPECT_EQ(fileutl_strip_leaf("a/b", 0, nullptr, 0, nullptr), -1);
    for (unsigned capacity = 1; capacity < 6; ++capacity) {
        char first[] = "......", second[] = "......";
        const int status = fileutl_strip_leaf("/abc/def", capacity, first, capacity, second);
        EXPECT_EQ(status, capacity < 5 ? -1 : 0) << capacity;
        EXPECT_EQ(first, std::string("/abc").substr(0, capacity - 1));
        EXPECT_EQ(second, std::string("def").substr(0, capacity - 1));
        EXPECT_TRUE(first[capacity] == '.' && second[capacity] == '.') << capacity;
    }
}

TEST(pathexpandtilde, TakesHomeOrTheUsersDirectory) {
    setenv("HOME", "/home/me", 1);
    EXPECT_EQ(take(pathexpandtilde("~")), "/home/me");
    EXPECT_EQ(take(pathexpandtilde("~//x~/y")), "/home/me//x~/y");
    EXPECT_EQ(take(pathexpandtilde("a/~")), "a/~");
    const std::string unknown = "~" + std::string(100000, 'x') + "/y";
    EXPECT_EQ(take(pathexpandtilde(unknown.c_str())), unknown);
    unsetenv("HOME");
    EXPECT_EQ(take(pathexpandtilde("~/x")), "/x");
    if (const passwd* const self = getpwuid(getuid())) {
        const std::string tilde = std::string("~") + self->pw_name + "/a/b";
        EXPECT_EQ(take(pathexpandtilde(tilde.c_str())), std::string(self->pw_dir) + "/a/b");
    }
}

TEST(symbolicLinkExtendedName, NeverWritesPastItsBlock) {
    const std::string link = testing::TempDir() + "qz-link-" + std::to_string(getpid());
    ASSERT_EQ(symlink("target", link.c_str()), 0);
    for (unsigned size = 2; size < 9; ++size) {
        const std::string expected = std::string("target").substr(0, size - 1);
        EXPECT_EQ(take(symbolicLinkExtendedName(link.c_str(), size)), expected);
    }
    EXPECT_FALSE(symbolicLinkExtendedName(link.c_str(), 0));
    EXPECT_FALSE(symbolicLinkExtendedName(link.c_str(), 1));
    unlink(link.c_str());
    for (const char* path : {link.c_str(), "/", static_cast<const char*>(nullptr)})
        EXPECT_FALSE(symbolicLinkExtendedName(path, 100));
}

TEST(environmentVariableExtendedName, NameAtTheEndStopsBeforeTheLastCharacter) {
    setenv("QZ_HOM", "/h", 1);
    setenv("QZ_HOME", "/wrong", 1);
    setenv("QZ_B", "$QZ_HOM/two", 1);
    setenv("a", "/wrong", 1);
    const struct {
        const char *path, *expected;
    } rows[] = {{"", ""},
                {"$QZ_HOME", "/hE"},
                {"$QZ_HOM$", "/h$"},
                {"$QZ_HOM/", "/h/"},
                {"x$QZ_HOM y/$QZ_HOM/z", "x/h y//h/z"},
                {"/$QZ_B/", "/$QZ_HOM/two/"}};
    for (const auto& [path, expected] : rows) {
        const unsigned size = static_cast<unsigned>(std::strlen(expected));
        EXPECT_EQ(take(environmentVariableExtendedName(path, size + 1)), expected);
        EXPECT_FALSE(environmentVariableExtendedName(path, size)) << path << " has no room";
    }
    for (const char* path : {"a/$QZ_UNSET b", "x$QZ_HOM", "$QZ_HOM$BC", "$", "$$", "$/x", "$a",
                             static_cast<const char*>(nullptr)})
        EXPECT_FALSE(environmentVariableExtendedName(path, 100)) << path;
}

} // namespace
