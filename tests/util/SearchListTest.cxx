#include "util/SearchList.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include <unistd.h>

namespace {

// Works in a fresh directory with files in one/ and two/, removed at the end.
class Tree {
  public:
    Tree() {
        if (!mkdtemp(root.data())) std::abort();
        std::filesystem::current_path(root);
        for (const char* directory : {"one", "two"})
            std::filesystem::create_directory(directory);
        for (const char* file : {"one/a.c", "one/ab.c", "one/a.cc", "one/xa.c", "two/a.c"})
            std::ofstream{file};
    }
    ~Tree() {
        std::filesystem::current_path("..");
        std::filesystem::remove_all(root);
    }

  private:
    std::string root = testing::TempDir() + "qz-search-XXXXXX";
};

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
    EXPECT_EQ(&list.getTypeObj(), &qzStrArray_type);
    std::ofstream("two/b.c");
    list.searchList("two");
    list.regexp("[ab]\\.c");
    list.searchCriteria("two", "[ab]\\.c");
    EXPECT_EQ(found(list), "two/a.c");
    list.regexp("[abc]\\.c");
    EXPECT_EQ(found(list), "two/a.c two/b.c");
    qzSearchList copy(list);
    list.searchList("one");
    EXPECT_EQ(found(list), "one/a.c");
    list.searchCriteria("one", "xa\\.c");
    EXPECT_EQ(found(list), "one/xa.c");
    list.searchCriteria(nullptr, "xa\\.c");
    EXPECT_EQ(found(list), "");
    EXPECT_EQ(found(copy), "two/a.c two/b.c");
    copy.searchList("one");
    EXPECT_EQ(found(copy), "one/a.c") << "a copy keeps the expression";
    EXPECT_EQ(dup(1), descriptor + 1) << "a directory has been left open";
}

} // namespace
