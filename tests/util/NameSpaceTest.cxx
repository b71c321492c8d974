#include "util/NameSpace.h"

#include <gtest/gtest.h>

#include <climits>
#include <csignal>
#include <cstdlib>
#include <map>
#include <random>
#include <string>
#include <sys/resource.h>
#include <vector>

namespace {

int noAtoms(NameSpace*) { return 0; }

TEST(NameSpace, AgreesWithAMapOverNamesFullOfPrefixesAndHighBytes) {
    std::mt19937 random(2701);
    const char letters[] = {'a', 'b', '`', '|', '\xff'}; // "a", "aa" and "`|" have one hash
    NameSpace names(noAtoms, 0);
    std::map<std::string, unsigned long> model;
    for (int step = 0; step < 20000; ++step) {
        std::vector<char> name(random() % 6); // not terminated
        for (char& c : name)
            c = letters[random() % 5];
        const std::string text(name.begin(), name.end());
        const int create = random() % 3 == 0;
        if (create) model.emplace(text, model.size() + 1);
        const auto found = model.find(text);
        ASSERT_EQ(names.makeAtom(name.data(), unsigned(name.size()), create),
                  found == model.end() ? 0 : found->second);
    }
    for (const auto& [name, atom] : model)
        ASSERT_STREQ(names.nameForAtom(atom), name.c_str());
    EXPECT_FALSE(names.validAtom(0) || names.validAtom(ULONG_MAX));
    EXPECT_EQ(names.nameForAtom(model.size() + 1), nullptr);
}

TEST(NameSpace, HashPairsSignedCharactersFromBothEnds) {
    const std::map<const char*, unsigned> rows = {
        {"", 0}, {"a", 2716}, {"ab", 2717}, {"\xff\x01", 0xffffffe6}, {"name\xe9", 1568142559}};
    for (const auto& [name, hash] : rows) {
        NameSpace names(noAtoms, 0);
        names.makeAtom(name, 1);
        EXPECT_EQ(names.root->hash, hash) << name;
    }
}

TEST(NameSpace, InitNumbersAutomaticallyInBothKinds) {
    static const char borrowed[] = "alpha";
    const auto init = [](NameSpace* names) {
        return static_cast<int>(names->makeAtom(borrowed, 1) - 1);
    };
    for (int explicitNumbers : {0, 1}) {
        NameSpace names(init, explicitNumbers);
        EXPECT_EQ(names.firstOwnedAtom, 2u);
        EXPECT_EQ(names.nameForAtom(1), borrowed);
    }
}

TEST(NameSpace, NumberInUseGoesToTheNewNameToo) {
    NameSpace names(noAtoms, 1);
    EXPECT_EQ(names.makeAtom(99, "old", 3, 1), 99u);
    EXPECT_EQ(names.tableSize, 100u);
    EXPECT_EQ(names.makeAtom(99, "new", 3, 1), 99u);
    EXPECT_STREQ(names.nameForAtom(99), "new");
    EXPECT_EQ(names.makeAtom(250, "far", 3, 1), 250u); // doubles the table until it fits
    EXPECT_EQ(names.tableSize, 400u);
    EXPECT_EQ(names.makeAtom(6, "old", 3, 1), 99u); // known: the number is not looked at
    EXPECT_FALSE(names.validAtom(6));
}

// Names in the order of their hashes make a list of the tree.
[[noreturn]] void makeAndFreeOnASmallStack(int first, int step) {
    const rlimit small = {1 << 16, 1 << 16};
    setrlimit(RLIMIT_STACK, &small);
    {
        NameSpace names(noAtoms, 0);
        for (int n = first; n >= 1000 && n <= 11000; n += step) {
            const char name[] = {char(n / 702), char('a' + n % 26), char('A' + n / 26 % 27)};
            names.makeAtom(name, 3, 1);
        }
    }
    std::exit(0);
}

TEST(NameSpaceDeathTest, LopsidedTreeIsReleasedOnASmallStack) {
    EXPECT_EXIT(makeAndFreeOnASmallStack(1000, 1), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(makeAndFreeOnASmallStack(11000, -1), testing::ExitedWithCode(0), "");
}

const auto aborted = testing::KilledBySignal(SIGABRT);

TEST(NameSpaceDeathTest, WrongNumberingAndNumbersTooHighAbort) {
    NameSpace numbered(noAtoms, 1), counted(noAtoms, 0);
    EXPECT_EXIT(numbered.makeAtom("a", 1), aborted, "^$");
    EXPECT_EXIT(counted.makeAtom(1, "a", 1, 1), aborted, "^$");
    EXPECT_EXIT(numbered.makeAtom(ULONG_MAX, "a", 1, 1), aborted, "^$");
    EXPECT_EXIT(numbered.makeAtom(ULONG_MAX / 4 * 3, "a", 1, 1), aborted, "^$");
    EXPECT_EXIT(NameSpace([](NameSpace*) { return 1; }, 0), testing::ExitedWithCode(255), "^$");
}

} // namespace
