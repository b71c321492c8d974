#include "util/PathNames.h"

#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include <pwd.h>
#include <unistd.h>

#include "util/Companion.h"
#include "util/Path.h"

namespace {

// The text of a result, which is freed; nothing for null.
std::optional<std::string> take(char* result) {
    if (!result) return std::nullopt;
    const std::string text(result);
    std::free(result);
    return text;
}

// A variable that has its value (is unset, for null) while this lives.
class Variable {
  public:
    Variable(const char* name, const char* value) : name(name) {
        if (const char* present = std::getenv(name)) before = present;
        set(value);
    }
    ~Variable() { set(before ? before->c_str() : nullptr); }

  private:
    void set(const char* value) { value ? setenv(name, value, 1) : unsetenv(name); }

    const char* name;
    std::optional<std::string> before;
};

struct Row {
    const char* path;
    const char* directory;
    const char* leaf;
};

const Row splits[] = {
    {"", ".", ""},
    {"/", "/", ""},
    {"//", "/", ""},
    {"abc", ".", "abc"},
    {"abc/", ".", "abc"},
    {"abc//", ".", "abc"},
    {"/abc", "", "abc"},
    {"//abc", "", "abc"},
    {"/abc/", "", "abc"},
    {"a/b", "a", "b"},
    {"a//b/", "a", "b"},
    {"a/b//", "a", "b"},
    {"/a/b", "/a", "b"},
    {"//a//b", "//a", "b"},
    {"a/b/c", "a/b", "c"},
    {"../x.y", "..", "x.y"},
    {"a b/c d", "a b", "c d"},
};

TEST(pathbasename, IsWhatPathdirnameLeaves) {
    for (const Row& row : splits) {
        EXPECT_EQ(take(pathdirname(row.path)), row.directory) << row.path;
        EXPECT_EQ(take(pathbasename(row.path)), row.leaf) << row.path;
    }
    EXPECT_EQ(pathdirname(nullptr), nullptr);
    EXPECT_EQ(pathbasename(nullptr), nullptr);
}

TEST(pathdirname, OfAFileInTheRootIsEmpty) { EXPECT_EQ(take(pathdirname("/abc")), ""); }

TEST(pathexpandtilde, TakesHomeForTheTildeAlone) {
    const Variable home("HOME", "/home/me");
    EXPECT_EQ(take(pathexpandtilde("~")), "/home/me");
    EXPECT_EQ(take(pathexpandtilde("~//x~/y")), "/home/me//x~/y");
    EXPECT_EQ(take(pathexpandtilde("a/~")), "a/~");
    EXPECT_EQ(take(pathexpandtilde("")), "");
    EXPECT_EQ(pathexpandtilde(nullptr), nullptr);
    const Variable unset("HOME", nullptr);
    EXPECT_EQ(take(pathexpandtilde("~/x")), "/x");
}

TEST(pathexpandtilde, LooksUpUsersAndLeavesUnknownOnesAlone) {
    const Variable home("HOME", "/wrong");
    const passwd* const self = getpwuid(getuid());
    if (!self) GTEST_SKIP() << "whoever runs the tests has no user name";
    const std::string tilde = std::string("~") + self->pw_name, directory = self->pw_dir;
    EXPECT_EQ(take(pathexpandtilde(tilde.c_str())), directory);
    EXPECT_EQ(take(pathexpandtilde((tilde + "/a/b").c_str())), directory + "/a/b");
    const std::string longName = "~" + std::string(100000, 'x') + "/y";
    for (const std::string& unknown : {std::string("~no-such-user/x"), longName})
        EXPECT_EQ(take(pathexpandtilde(unknown.c_str())), unknown);
}

TEST(symbolicLinkExtendedName, NeverWritesPastItsBlock) {
    const std::string link = testing::TempDir() + "qz-link-" + std::to_string(getpid());
    ASSERT_EQ(symlink("target", link.c_str()), 0);
    EXPECT_EQ(take(symbolicLinkExtendedName(link.c_str(), 100)), "target");
    EXPECT_EQ(take(symbolicLinkExtendedName(link.c_str(), 7)), "target");
    EXPECT_EQ(take(symbolicLinkExtendedName(link.c_str(), 6)), "targe");
    EXPECT_EQ(take(symbolicLinkExtendedName(link.c_str(), 2)), "t");
    EXPECT_EQ(symbolicLinkExtendedName(link.c_str(), 1), nullptr);
    EXPECT_EQ(symbolicLinkExtendedName(link.c_str(), 0), nullptr);
    unlink(link.c_str());
    EXPECT_EQ(symbolicLinkExtendedName(link.c_str(), 100), nullptr) << "there is no such file";
    EXPECT_EQ(symbolicLinkExtendedName("/", 100), nullptr) << "no link";
    EXPECT_EQ(symbolicLinkExtendedName(nullptr, 100), nullptr);
}

std::optional<std::string> expand(const char* path, unsigned size = 100) {
    return take(environmentVariableExtendedName(path, size));
}

TEST(environmentVariableExtendedName, ReplacesEveryVariableOnce) {
    const Variable a("QZ_A", "one"), b("QZ_B", "$QZ_A/two"), empty("QZ_E", "");
    EXPECT_EQ(expand(""), "");
    EXPECT_EQ(expand("a b/c"), "a b/c");
    EXPECT_EQ(expand("$QZ_A/"), "one/");
    EXPECT_EQ(expand("x$QZ_A y/$QZ_A/z"), "xone y/one/z");
    EXPECT_EQ(expand("/$QZ_B/$QZ_E/"), "/$QZ_A/two//");
    EXPECT_EQ(environmentVariableExtendedName(nullptr, 100), nullptr);
}

TEST(environmentVariableExtendedName, NameAtTheEndStopsBeforeTheLastCharacter) {
    const Variable shorter("QZ_HOM", "/h"), full("QZ_HOME", "/wrong"), odd("QZ_A$B", "/odd");
    EXPECT_EQ(expand("$QZ_HOME"), "/hE");
    EXPECT_EQ(expand("x/$QZ_HOM"), std::nullopt);
    EXPECT_EQ(expand("$QZ_HOM$"), "/h$") << "the last character is copied whatever it is";
    EXPECT_EQ(expand("$QZ_A$BC"), "/oddC") << "only '/' and ' ' end a name";
}

TEST(environmentVariableExtendedName, UnsetOrMissingNameGivesNull) {
    const Variable unset("QZ_UNSET", nullptr);
    for (const char* path : {"$QZ_UNSET/", "a/$QZ_UNSET b", "$", "abc$", "$a", "$$", "$/x", "a$ b"})
        EXPECT_EQ(expand(path), std::nullopt) << path;
}

TEST(environmentVariableExtendedName, ResultMustFitWithItsTerminator) {
    const Variable value("QZ_A", "one"), longNamed("QZ_A_RATHER_LONG_NAME", "x");
    const char* const path = "ab$QZ_A/cd"; // "abone/cd"
    EXPECT_EQ(expand(path, 9), "abone/cd");
    for (unsigned size = 0; size < 9; ++size)
        EXPECT_EQ(expand(path, size), std::nullopt) << size;
    EXPECT_EQ(expand("", 1), "");
    EXPECT_EQ(expand("", 0), std::nullopt);
    EXPECT_EQ(expand("$QZ_A_RATHER_LONG_NAME/", 3), "x/") << "a name longer than the result";
}

TEST(qzPath, SplitsAsTheFunctionsOnCStringsDo) {
    for (const Row& row : splits) {
        SCOPED_TRACE(row.path);
        if (!*row.path) continue;
        qzPath path(row.path), leaf("longer than the path by far");
        EXPECT_EQ(path.directory(), row.directory);
        EXPECT_EQ(path.leaf(), row.leaf);
        EXPECT_EQ(path.split(&path, &leaf), 0);
        EXPECT_EQ(path, row.directory) << "itself as the output";
        EXPECT_EQ(leaf, row.leaf);
    }
    qzPath path = qzStr("a") | "/" | "b";
    path = path | "/c";
    EXPECT_EQ(path.directory(), "a/b") << "made and assigned as any string";
}

TEST(qzPath, PartsAreNoLongerThanThePath) {
    qzPath directory("x"), leaf("y");
    EXPECT_EQ(qzPath().split(&directory, &leaf), -1);
    EXPECT_EQ(directory, "");
    EXPECT_EQ(leaf, "");
    EXPECT_EQ(qzStr::emptyString, 0) << "what every empty string points at";
}

TEST(fileutl_strip_leaf, CutsToTheCapacities) {
    for (unsigned capacity = 1; capacity < 6; ++capacity) {
        char directory[] = "........", leaf[] = "........";
        const int status = fileutl_strip_leaf("/abc/def", capacity, directory, capacity, leaf);
        EXPECT_EQ(status, capacity < 5 ? -1 : 0) << capacity;
        EXPECT_EQ(directory, std::string("/abc").substr(0, capacity - 1));
        EXPECT_EQ(leaf, std::string("def").substr(0, capacity - 1));
        EXPECT_EQ(directory[capacity], '.') << "written past a capacity of " << capacity;
    }
    char untouched[] = ".";
    EXPECT_EQ(fileutl_strip_leaf("a/b", 0, untouched, 0, untouched), -1);
    EXPECT_STREQ(untouched, ".");
}

} // namespace
