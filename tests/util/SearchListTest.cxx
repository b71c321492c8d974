#include "util/SearchList.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

namespace {

// A fresh directory with one/ and two/ in it, removed at the end.
class Tree {
  public:
    Tree() : root(testing::TempDir() + "qz-search-XXXXXX") {
        if (!mkdtemp(root.data())) std::abort();
        for (const char* directory : {"/one", "/two"})
            std::filesystem::create_directory(root + directory);
        for (const char* file : {"one/a.c", "one/ab.c", "one/a.cc", "one/xa.c", "two/a.c"})
            touch(file);
    }
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;
    ~Tree() { std::filesystem::remove_all(root); }

    void touch(const char* file) const { std::ofstream(root + "/" + file); }
    std::string operator/(const char* name) const { return root + "/" + name; }

    std::string root;
};

// What was found, without the root, in the order of the names: the system's is
// any.
std::string found(const qzSearchList& list, const Tree& tree) {
    std::vector<std::string> paths;
    for (unsigned i = 0; i < list.length(); ++i) {
        const std::string path(list[i].c_str());
        EXPECT_EQ(path.compare(0, tree.root.size(), tree.root), 0) << path;
        paths.push_back(path.substr(tree.root.size()));
    }
    std::sort(paths.begin(), paths.end());
    std::string line;
    for (const std::string& path : paths)
        line += (line.empty() ? "" : " ") + path;
    return line;
}

std::string find(const Tree& tree, const std::string& searchList, const char* regexp) {
    return found(qzSearchList(searchList.c_str(), regexp), tree);
}

TEST(qzSearchList, TakesNamesThatMatchAsAWhole) {
    const Tree tree;
    const std::string one = tree / "one";
    EXPECT_EQ(find(tree, one, ".*\\.c"), "/one/a.c /one/ab.c /one/xa.c");
    EXPECT_EQ(find(tree, one, "a\\.c"), "/one/a.c");
    EXPECT_EQ(find(tree, one, "\\.+"), "/one/. /one/..");
}

TEST(qzSearchList, FirstMatchMustBeTheWholeName) {
    const Tree tree;
    EXPECT_EQ(find(tree, tree / "one", "(a|ab)\\.c"), "/one/a.c /one/ab.c");
    EXPECT_EQ(find(tree, tree / "one", "a\\.c|a\\.cc"), "/one/a.c");
    EXPECT_EQ(find(tree, tree / "one", "a\\.cc|a\\.c"), "/one/a.c /one/a.cc");
}

TEST(qzSearchList, VisitsEveryDirectoryInOrderAndSkipsWhatItCannotOpen) {
    const Tree tree;
    const std::string one = tree / "one", two = tree / "two";
    const std::string all = ":" + two + "::" + (tree / "none") + ":" + one + "/a.c:" + one + ":";
    const qzSearchList list(all.c_str(), "a\\.c");
    ASSERT_EQ(list.length(), 2u);
    EXPECT_EQ(list[0], (two + "/a.c").c_str());
    EXPECT_EQ(list[1], (one + "/a.c").c_str());
}

TEST(qzSearchList, PutsOneSlashAfterTheDirectoryAsItStands) {
    const Tree tree;
    EXPECT_EQ(find(tree, tree / "two/", "a.*"), "/two//a.c");
}

TEST(qzSearchList, ReadsTheDirectoriesOnlyForAChange) {
    const Tree tree;
    const std::string one = tree / "one", two = tree / "two";
    qzSearchList list(two.c_str(), "[ab]\\.c");
    tree.touch("two/b.c");
    list.searchList(two.c_str());
    list.regexp("[ab]\\.c");
    list.searchCriteria(two.c_str(), "[ab]\\.c");
    EXPECT_EQ(found(list, tree), "/two/a.c");
    list.regexp("[abc]\\.c");
    EXPECT_EQ(found(list, tree), "/two/a.c /two/b.c");
    list.searchList(one.c_str());
    EXPECT_EQ(found(list, tree), "/one/a.c");
    list.searchCriteria(one.c_str(), "xa\\.c");
    EXPECT_EQ(found(list, tree), "/one/xa.c");
    list.searchCriteria(two.c_str(), "xa\\.c");
    EXPECT_EQ(found(list, tree), "");
    list.searchCriteria(two.c_str(), "b\\.c");
    list.searchList("");
    EXPECT_EQ(found(list, tree), "");
}

TEST(qzSearchList, MalformedExpressionMatchesNothing) {
    const Tree tree;
    EXPECT_EQ(find(tree, tree / "one", "(a"), "");
    EXPECT_EQ(find(tree, tree / "one", ""), "");
}

TEST(qzSearchList, ClosesTheDirectoriesItOpened) {
    const Tree tree;
    const auto nextDescriptor = [] {
        const int descriptor = open("/dev/null", O_RDONLY);
        close(descriptor);
        return descriptor;
    };
    const int before = nextDescriptor();
    find(tree, (tree / "one") + ":" + (tree / "two"), ".*");
    EXPECT_EQ(nextDescriptor(), before);
}

TEST(qzSearchList, IsAStringArrayWhoseCopiesKeepTheCriteria) {
    const Tree tree;
    qzSearchList list((tree / "one").c_str(), "a\\.cc?");
    EXPECT_EQ(&list.getTypeObj(), &qzStrArray_type);
    qzSearchList copy(list);
    list.searchCriteria(nullptr, nullptr);
    EXPECT_EQ(list.length(), 0u);
    EXPECT_EQ(found(copy, tree), "/one/a.c /one/a.cc");
    copy.searchList((tree / "two").c_str());
    EXPECT_EQ(found(copy, tree), "/two/a.c");
}

} // namespace
