#include "util/GenericList.h"
#include "util/HashTable.h"
#include "util/IndexableList.h"
#include "util/NameSpace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <map>
#include <random>
#include <sys/resource.h>

namespace {

const auto aborted = testing::KilledBySignal(SIGABRT);

int items[60];

const void* content(const GenericNode* node) { return node->item; }
const void* content(const qzLinkItem* item) { return item; }

// "cached" is null where nothing is.
template <class List, class Item, class Node>
void expectSame(const List& list, const std::vector<Item*>& model, const Node* cached) {
    const Node *previous = nullptr, *node = list.head;
    for (long i = 0; i < list.count; ++i, previous = node, node = node->next) {
        ASSERT_EQ(content(node), model.at(i));
        ASSERT_EQ(node->prev, previous);
        ASSERT_EQ(node == cached, cached && i == list.cacheIndex);
    }
    ASSERT_EQ(node, nullptr);
    ASSERT_EQ(list.tail, previous);
    ASSERT_EQ(list.count, static_cast<long>(model.size()));
}

TEST(GenericList, AgreesWithAVectorAndCachesWhatItTouched) {
    std::mt19937 random(2601);
    GenericList list;
    std::vector<void*> model;
    for (int step = 0; step < 20000; ++step) {
        const long at = random() % (model.size() + 1);
        void* item = &items[random() % 60];
        const unsigned choice = random() % 6;
        if (choice < 2) {
            list.insertAt(at, item);
            model.insert(model.begin() + at, item);
            ASSERT_EQ(list.cacheIndex, at);
        } else if (at == list.count) { // there is no item
        } else if (choice < 4) {
            const long cached = list.cacheIndex;
            ASSERT_EQ(list.findItem(at), model[at]);
            ASSERT_EQ(list.cacheIndex, at == 0 || at == list.count - 1 ? cached : at);
        } else {
            const auto found = std::find(model.begin(), model.end(), item);
            const auto removed = choice == 4 ? model.begin() + at : found;
            void* const expected = removed == model.end() ? nullptr : *removed;
            ASSERT_EQ(choice == 4 ? list.remove(at) : list.remove(item), expected);
            if (expected) model.erase(removed);
        }
        ASSERT_NO_FATAL_FAILURE(expectSame(list, model, list.cacheNode)) << "step " << step;
        ASSERT_EQ(!list.cacheNode, model.empty());
    }
    GenericList copy(list), assigned;
    assigned.append(items);
    assigned = list;
    assigned = static_cast<GenericList&>(assigned);
    list.clear();
    expectSame(copy, model, copy.cacheNode);
    expectSame(assigned, model, assigned.cacheNode);
}

TEST(GenericListDeathTest, IndexesOutOfRangeAreReported) {
    const char* message =
        "^List bounds violation in \\.\\./GenericList\\.cxx aborting \\.\\.\\.\n$";
    GenericList list;
    list.append(items);
    EXPECT_EXIT(list.findItem(1), aborted, message);
    EXPECT_EXIT(list.findItem(-1L), aborted, message);
}

TEST(GenericListDeathTest, RemovingFromAnEmptyListIsAnUnderflow) {
    const char* message = "^List underflow in \\.\\./GenericList\\.cxx aborting \\.\\.\\.\n$";
    GenericList list;
    EXPECT_EXIT(list.remove(0L), aborted, message);
    EXPECT_EXIT(list.remove(list.head), aborted, message);
    EXPECT_EXIT(list.remove(static_cast<void*>(items)), aborted, message);
}

TEST(qzIndexableList, AgreesWithAVectorThroughRandomOperations) {
    std::mt19937 random(2602);
    std::vector<qzLinkItem> items(60);
    std::vector<qzLinkItem*> unused, model;
    for (qzLinkItem& item : items)
        unused.push_back(&item);
    qzIndexableList list;
    for (int step = 0; step < 40000; ++step) {
        const long size = list.count, at = size ? random() % size : 0;
        const unsigned choice = random() % 10;
        // The ends are had without the cache.
        const long cached = at == 0 || at == size - 1 ? list.cacheIndex : at;
        if (choice < 2 && !unused.empty()) {
            const long position = random() % (size + 1);
            list.appendAt(position - 1, unused.back());
            model.insert(model.begin() + position, unused.back());
            unused.pop_back();
        } else if (choice < 4 && size > 20) {
            qzLinkItem* item = choice == 2 ? list.unlinkAt(at) : list.unlink(model[at]);
            ASSERT_EQ(item, model[at]);
            ASSERT_TRUE(!item->next && !item->prev);
            const bool following = cached > at || cached == size - 1;
            ASSERT_EQ(list.cacheIndex, choice == 2 ? cached - following : 0);
            model.erase(model.begin() + at);
            unused.push_back(item);
            item->next = item->prev = item; // stale links do not matter
        } else if (choice < 8 && size) {    // cut in two and put together elsewhere
            qzIndexableList rest(choice == 5 ? list.splitAt(at) : list.split(model[at]));
            const std::vector<qzLinkItem*> cut(model.begin() + at, model.end());
            model.resize(at);
            ASSERT_NO_FATAL_FAILURE(expectSame(list, model, list.cacheLink)) << "step " << step;
            ASSERT_NO_FATAL_FAILURE(expectSame(rest, cut, rest.cacheLink)) << "step " << step;
            ASSERT_EQ(list.cacheIndex, choice == 5 && cached < at ? cached : 0);
            const long behind = at ? random() % at : 0;
            const long position = choice == 5 || at == 0 ? behind : choice == 6 ? at : behind + 1;
            if (choice == 5) list.insertListAt(behind, &rest);
            if (choice == 6 || position == at) list.appendList(&rest);
            if (rest.head) list.appendListAt(behind, &rest);
            model.insert(model.begin() + position, cut.begin(), cut.end());
            ASSERT_EQ(list.cacheLink, nullptr);
            list.appendListAt(at, &rest); // it is empty now
        } else if (size) {
            ASSERT_EQ(list.findLink(at), model[at]);
        }
        ASSERT_NO_FATAL_FAILURE(expectSame(list, model, list.cacheLink)) << "step " << step;
    }
}

TEST(qzIndexableList, SplicingBehindTheLastIndexKeepsTail) {
    qzLinkItem items[3];
    qzIndexableList list, other;
    list.append(&items[0]);
    list.append(&items[1]);
    other.append(&items[2]);
    list.appendListAt(1, &other);
    EXPECT_EQ(list.tail, &items[1]);
    EXPECT_EQ(list.tail->next, &items[2]);
}

TEST(HashTable, AgreesWithAMapAndDoublesWhenFull) {
    std::mt19937 random(2603);
    HashTable table;
    std::map<unsigned long, void*> model;
    int additions = 0, size = 64;
    for (int step = 0; step < 60000; ++step) {
        const unsigned long key = random() % 3000 * 0x10005;
        const auto found = model.find(key);
        ASSERT_EQ(table.lookup(key), found == model.end() ? nullptr : found->second);
        if (random() % 2) {
            table.remove(key);
            model.erase(key);
        } else if (found == model.end()) {
            table.add(key, model[key] = &items[random() % 60]);
            if (additions++ >= 4 * size && size < 2048) size *= 2;
            ASSERT_EQ(table.size, size);
        }
    }
}

TEST(HashTable, KeysGoToTheBucketOfTheirHash) {
    const struct {
        unsigned long key;
        int buckets[6]; // by bits, from 6 to 11
    } rows[] = {
        {0xfedcb, {2, 111, 41, 61, 560, 1078}},
        {0x12345678, {36, 118, 42, 83, 877, 1778}},
        {0xff954321, {57, 13, 103, 384, 625, 905}},
    };
    for (const auto& row : rows) {
        HashTable table;
        table.add(row.key, items);
        for (int bits = 6; bits <= 11; ++bits) {
            while (table.bits < bits)
                table.addElement(0);
            EXPECT_TRUE(HashTable::searchBucketFor(table.buckets[row.buckets[bits - 6]], row.key));
        }
    }
}

TEST(HashTable, RemovalDoesNotLowerTheCount) {
    HashTable table;
    for (unsigned long n = 0; n < 256; ++n) // the hash ignores these bits
        table.add(n << 20, items);
    EXPECT_EQ(table.buckets[0]->key, 255u << 20); // newest first
    table.remove(7u << 20);
    EXPECT_EQ(table.count, 256);
    table.add(256u << 20, items);
    EXPECT_EQ(table.size, 128);
    EXPECT_EQ(table.buckets[0]->next->key, 0u); // growing turns the chains round
}

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
    EXPECT_FALSE(names.validAtom(0) || names.validAtom(~0ul) ||
                 names.nameForAtom(model.size() + 1));
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
TEST(NameSpaceDeathTest, LopsidedTreeIsReleasedOnASmallStack) {
    const auto makeAndFree = [] {
        const rlimit small = {1 << 16, 1 << 16};
        setrlimit(RLIMIT_STACK, &small);
        NameSpace names(noAtoms, 0);
        for (int n = 11000; n > 1000; --n) {
            const char name[] = {char(n / 702), char('a' + n % 26), char('A' + n / 26 % 27)};
            names.makeAtom(name, 3, 1);
        }
    };
    EXPECT_EXIT((makeAndFree(), std::exit(0)), testing::ExitedWithCode(0), "");
}

TEST(TablesDeathTest, UsedKeysWrongNumberingAndNumbersTooHighAbort) {
    NameSpace numbered(noAtoms, 1), counted(noAtoms, 0);
    HashTable table;
    table.add(1, nullptr);
    EXPECT_EXIT(table.add(1, items), aborted, "^$");
    EXPECT_EXIT(numbered.makeAtom("a", 1), aborted, "^$");
    EXPECT_EXIT(counted.makeAtom(1, "a", 1, 1), aborted, "^$");
    EXPECT_EXIT(numbered.makeAtom(~0ul, "a", 1, 1), aborted, "^$");
    EXPECT_EXIT(numbered.makeAtom(~0ul / 4 * 3, "a", 1, 1), aborted, "^$");
    EXPECT_EXIT(NameSpace([](NameSpace*) { return 1; }, 0), testing::ExitedWithCode(255), "^$");
}

} // namespace
