#include "util/NameSpace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <csignal>
#include <map>
#include <pthread.h>
#include <random>
#include <string>
#include <vector>

namespace {

const int automatic = 0;
const int byCaller = 1;

int noAtoms(NameSpace*) { return 0; }

char borrowed[] = "alpha";

int twoAtoms(NameSpace* names) {
    names->makeAtom(borrowed, 1);
    names->makeAtom("beta", 1);
    return 0;
}

// Hands over a block that ends with the name, so that the address sanitizer
// sees a search reading on.
unsigned long intern(NameSpace& names, const std::string& name, int create) {
    const std::vector<char> exact(name.begin(), name.end());
    return names.makeAtom(exact.data(), static_cast<unsigned>(exact.size()), create);
}

TEST(NameSpace, AgreesWithAMapOverNamesFullOfPrefixesAndHighBytes) {
    std::mt19937 random(2701);
    const char letters[] = {'a', 'b', '\xe9', '\xff'};
    NameSpace names(noAtoms, automatic);
    std::map<std::string, unsigned long> model;
    for (int step = 0; step < 20000; ++step) {
        std::string name;
        for (unsigned length = random() % 7; length; --length)
            name += letters[random() % 4];
        const int create = random() % 3 == 0;
        if (create) model.emplace(name, model.size() + 1);
        const auto found = model.find(name);
        ASSERT_EQ(intern(names, name, create), found == model.end() ? 0 : found->second);
    }
    for (const auto& [name, atom] : model) {
        ASSERT_STREQ(names.nameForAtom(atom), name.c_str());
        ASSERT_TRUE(names.validAtom(atom));
    }
    EXPECT_EQ(names.nameForAtom(0), nullptr);
    EXPECT_FALSE(names.validAtom(0));
    EXPECT_EQ(names.nameForAtom(model.size() + 1), nullptr);
    EXPECT_FALSE(names.validAtom(ULONG_MAX));
}

TEST(NameSpace, HashPairsSignedCharactersFromBothEnds) {
    const struct {
        const char* name;
        unsigned hash;
    } rows[] = {{"", 0},
                {"a", 2716},
                {"ab", 2717},
                {"abc", 1984166},
                {"\xff", 0xffffffe4},
                {"\xff\x01", 0xffffffe6},
                {"abcd", 1984896},
                {"name\xe9", 1568142559},
                {"zzzzzzzz", 2396359392}};
    for (const auto& row : rows) {
        NameSpace names(noAtoms, automatic);
        names.makeAtom(row.name, 1);
        EXPECT_EQ(names.root->hash, row.hash) << row.name;
    }
}

TEST(NameSpace, NamesOfOneHashAreToldApartInAnyOrder) {
    std::vector<std::string> order{"a", "aa", "`|"};
    std::sort(order.begin(), order.end());
    do {
        NameSpace names(noAtoms, automatic);
        for (unsigned long i = 0; i < 3; ++i) {
            EXPECT_EQ(intern(names, order[i], 0), 0u);
            EXPECT_EQ(intern(names, order[i], 1), i + 1);
        }
        for (unsigned long i = 0; i < 3; ++i)
            EXPECT_EQ(intern(names, order[i], 0), i + 1);
        EXPECT_EQ(names.root->hash, 2716u);
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST(NameSpace, InitNumbersAutomaticallyInBothKinds) {
    for (int kind : {automatic, byCaller}) {
        NameSpace names(twoAtoms, kind);
        EXPECT_EQ(names.makeAtom("alpha", 0), 1u);
        EXPECT_EQ(names.makeAtom("beta", 0), 2u);
        EXPECT_EQ(names.firstOwnedAtom, 3u);
    }
}

TEST(NameSpace, OnlyNamesOfInitAreBorrowed) {
    NameSpace names(twoAtoms, byCaller);
    char high[] = "gamma", low[] = "delta";
    names.makeAtom(3, high, 5, 1);
    names.makeAtom(2, low, 5, 1); // copied, and released, as well
    high[0] = low[0] = '?';
    borrowed[0] = 'A';
    EXPECT_STREQ(names.nameForAtom(3), "gamma");
    EXPECT_STREQ(names.nameForAtom(2), "delta");
    EXPECT_STREQ(names.nameForAtom(1), "Alpha");
    borrowed[0] = 'a';
}

TEST(NameSpace, ExplicitNumberDoublesTheTableUntilItFits) {
    NameSpace names(noAtoms, byCaller);
    names.makeAtom(99, "edge", 4, 1);
    EXPECT_EQ(names.tableSize, 100u);
    EXPECT_EQ(names.makeAtom(250, "far", 3, 1), 250u);
    EXPECT_EQ(names.tableSize, 400u);
    names.makeAtom(100, "next", 4, 1);
    EXPECT_EQ(names.maxAtom, 250u);
    EXPECT_STREQ(names.nameForAtom(99), "edge");
    for (unsigned long atom : {1, 98, 101, 200, 249})
        EXPECT_FALSE(names.validAtom(atom)) << atom;
}

TEST(NameSpace, NumberInUseGoesToTheNewNameToo) {
    NameSpace names(noAtoms, byCaller);
    names.makeAtom(5, "old", 3, 1);
    EXPECT_EQ(names.makeAtom(5, "new", 3, 1), 5u);
    EXPECT_EQ(names.makeAtom(6, "new", 3, 1), 5u); // known: the number is not looked at
    EXPECT_STREQ(names.nameForAtom(5), "new");
    EXPECT_EQ(names.makeAtom("old", 0), 5u);
}

// Names in the order of their hashes make a list of the tree.
void* makeAndFreeLopsidedTrees(void*) {
    for (bool rising : {true, false}) {
        NameSpace names(noAtoms, automatic);
        for (int i = 0; i < 10000; ++i) {
            const int n = rising ? i : 9999 - i;
            const int letters[] = {n / 676, n / 26 % 26, n % 26};
            std::string name = "aaaa";
            name[3] += letters[0]; // the hash looks at 0, 3, 1, 2 in this order
            name[1] += letters[1];
            name[2] += letters[2];
            names.makeAtom(name.c_str(), 1);
        }
        EXPECT_EQ(names.maxAtom, 10000u);
    }
    return nullptr;
}

TEST(NameSpace, LopsidedTreeIsReleasedOnASmallStack) {
    pthread_attr_t smallStack;
    pthread_attr_init(&smallStack);
    ASSERT_EQ(pthread_attr_setstacksize(&smallStack, 128 * 1024), 0);
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &smallStack, makeAndFreeLopsidedTrees, nullptr), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&smallStack);
}

const auto aborted = testing::KilledBySignal(SIGABRT);

TEST(NameSpaceDeathTest, CreatingInTheWrongWayOfNumberingAborts) {
    NameSpace numbered(noAtoms, byCaller), counted(noAtoms, automatic);
    EXPECT_EXIT(numbered.makeAtom("a", 1), aborted, "^$");
    EXPECT_EXIT(counted.makeAtom(1, "a", 1, 1), aborted, "^$");
    EXPECT_EQ(counted.makeAtom(1, "a", 1, 0), 0u);
}

TEST(NameSpaceDeathTest, NumbersTooHighForATableAbort) {
    NameSpace names(noAtoms, byCaller);
    for (unsigned long atom : {ULONG_MAX, ULONG_MAX / 4 * 3})
        EXPECT_EXIT(names.makeAtom(atom, "a", 1, 1), aborted, "^$");
}

TEST(NameSpaceDeathTest, FailingInitEndsTheProcess) {
    const auto fail = [](NameSpace*) { return 1; };
    EXPECT_EXIT(NameSpace(fail, automatic), testing::ExitedWithCode(255), "^$");
}

} // namespace
