#include "util/PathNames.h"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include <pwd.h>
#include <unistd.h>

#include "util/Companion.h"
#include "util/Path.h"
#include "util/SearchList.h"

using namespace std::string_literals;

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
        EXPECT_TRUE(path.directory() == row.directory && path.leaf() == row.leaf) << row.path;
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
        EXPECT_EQ(first, "/abc"s.substr(0, capacity - 1));
        EXPECT_EQ(second, "def"s.substr(0, capacity - 1));
        EXPECT_TRUE(first[capacity] == '.' && second[capacity] == '.') << capacity;
    }
}

TEST(pathexpandtilde, TakesHomeOrTheUsersDirectory) {
    setenv("HOME", "/home/me", 1);
    EXPECT_EQ(take(pathexpandtilde("~//x~/y")), "/home/me//x~/y");
    EXPECT_EQ(take(pathexpandtilde("a/~")), "a/~");
    const std::string unknown = "~" + std::string(100000, 'x') + "/y";
    EXPECT_EQ(take(pathexpandtilde(unknown.c_str())), unknown);
    unsetenv("HOME");
    EXPECT_EQ(take(pathexpandtilde("~/x")), "/x");
    const passwd* const root = getpwnam("root");
    EXPECT_EQ(take(pathexpandtilde("~root/a/b")), root ? root->pw_dir + "/a/b"s : "~root/a/b");
}

// Works in a fresh directory with files in one/ and two/, removed at the end.
struct Tree {
    Tree() {
        if (!mkdtemp(root.data())) std::abort();
        std::filesystem::current_path(root);
        std::filesystem::create_directory("one");
        std::filesystem::create_directory("two");
        for (const char* file : {"one/a.c", "one/ab.c", "one/a.cc", "one/xa.c", "two/a.c"})
            std::ofstream{file};
    }
    ~Tree() {
        std::filesystem::current_path("..");
        std::filesystem::remove_all(root);
    }
    std::string root = testing::TempDir() + "qz-search-XXXXXX";
};

TEST(symbolicLinkExtendedName, NeverWritesPastItsBlock) {
    const Tree tree;
    std::filesystem::create_symlink("target", "link");
    for (unsigned size = 2; size < 9; ++size) {
        EXPECT_EQ(take(symbolicLinkExtendedName("link", size)), "target"s.substr(0, size - 1));
    }
    EXPECT_FALSE(symbolicLinkExtendedName("link", 0) || symbolicLinkExtendedName("link", 1));
    for (const char* path : {"none", "/", static_cast<const char*>(nullptr)})
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

// Sorted, as the system lists names in any order.
std::string found(const qzSearchList& list) {
    qzStrArray paths(list);
    paths.qsort();
    std::string line;
    for (unsigned i = 0; i < paths.length(); ++i)
        line += (i ? " " : "") + std::string(paths[i].c_str());
    return line;
}

TEST(qzSearchList, FirstMatchMustBeTheWholeName) {
    const Tree tree;
    EXPECT_EQ(found({"one", ".*\\.c"}), "one/a.c one/ab.c one/xa.c");
    EXPECT_EQ(found({"one", "\\.+"}), "one/. one/..");
    EXPECT_EQ(found({"one", "a\\.c|a\\.cc"}), "one/a.c");
    EXPECT_EQ(found({"one", "a\\.cc|a\\.c"}), "one/a.c one/a.cc");
    EXPECT_EQ(found({"one", "(a"}), "") << "malformed";
}

TEST(qzSearchList, PutsOneSlashAfterTheDirectoryAsItStands) {
    const Tree tree;
    EXPECT_EQ(found({"two/", "a.*"}), "two//a.c");
    const qzSearchList list(":two::none:one/a.c:one:", "a\\.c");
    EXPECT_TRUE(list.length() == 2 && list[0] == "two/a.c" && list[1] == "one/a.c");
}

TEST(qzSearchList, ReadsTheDirectoriesOnlyForAChange) {
    const Tree tree;
    const int descriptor = dup(1);
    qzSearchList list("two", "[ab]\\.c");
    std::ofstream("two/b.c");
    list.searchList("two");
    list.regexp("[ab]\\.c");
    list.searchCriteria("two", "[ab]\\.c");
    EXPECT_EQ(found(list), "two/a.c");
    list.regexp("[abc]\\.c");
    EXPECT_EQ(found(list), "two/a.c two/b.c");
    list.searchList("one");
    EXPECT_EQ(found(list), "one/a.c");
    list.searchCriteria("one", "xa\\.c");
    EXPECT_EQ(found(list), "one/xa.c");
    list.searchCriteria(nullptr, "xa\\.c");
    EXPECT_EQ(found(list), "");
    EXPECT_EQ(dup(1), descriptor + 1) << "a directory has been left open";
}

} // namespace
