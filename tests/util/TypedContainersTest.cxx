#include <gtest/gtest.h>

#include <cstdlib>

#include "support/CountingEntry.h"
#include "util/StrSetIter.h"
#include "util/StrStrDictionaryIter.h"
#include "util/VoidPtrDictIter.h"
#include "xdr/BinaryOTDictIter.h"

namespace {

struct CountedKeys {
    using Key = CountingEntry;
    static unsigned hash(const CountingEntry& key) { return key.id; }
    static int compare(const CountingEntry& a, const CountingEntry& b) { return a.id - b.id; }
};

class CountedDict : public qzTypedDictionary<CountedDict, CountedKeys, CountingEntry> {
  public:
    using qzTypedDictionary::qzTypedDictionary;
};
using CountedDictIter = qzTypedDictIter<CountedDict>;

class CountedSet : public qzTypedSet<CountedSet, CountedKeys> {
  public:
    using qzTypedSet::qzTypedSet;
};

std::vector<int> idsOf(CountedDict& dict) {
    std::vector<int> ids;
    for (CountedDictIter i(dict); i.notDone(); ++i)
        ids.push_back(i.getKey()->id);
    return ids;
}

TEST(qzTypedDictionary, EveryEntryIsConstructedAndDestroyedOnce) {
    {
        CountedDict dict(3), merged(1);
        for (int id = 0; id < 10; ++id)
            dict.add(id, id * 10);
        EXPECT_EQ(dict[20].id, 0);
        dict.remove(4);
        dict.remove(4);
        CountedDictIter first(&dict);
        dict.remove(*first.getKey()); // 9
        ++first;
        dict.add(*first.getKey(), *dict.find(8));
        dict.add(8, *dict.find(8));
        EXPECT_EQ(dict[8].id, 80);
        EXPECT_EQ(CountingEntry::alive, 2 * 9);
        CountingEntry* const cut = dict.cut(*first.getKey()); // 6
        EXPECT_EQ(cut->id, 80);
        EXPECT_EQ(CountingEntry::alive, 2 * 8 + 1);
        cut->~CountingEntry();
        std::free(cut);

        CountedDict copy(dict);
        EXPECT_EQ(idsOf(dict), (std::vector<int>{3, 0, 7, 1, 20, 8, 5, 2}));
        EXPECT_EQ(idsOf(copy), (std::vector<int>{0, 3, 1, 7, 2, 5, 8, 20}));
        merged.add(2, 1);
        merged.add(40, 1);
        merged = dict;
        EXPECT_EQ(merged[2].id, 20);
        EXPECT_EQ(CountingEntry::alive, 2 * (8 + 8 + 9));
        copy.cleanup();
        EXPECT_EQ(CountingEntry::alive, 2 * (8 + 9));
    }
    EXPECT_EQ(CountingEntry::alive, 0);
}

TEST(qzStrStrDictionary, FindLeavesItsSecondArgumentAlone) {
    qzStrStrDictionary dict(3);
    EXPECT_EQ(dict["new"].length(), 0u);
    EXPECT_EQ(dict.size(), 1u);
    qzStr mine, *out = &mine;
    EXPECT_EQ(dict.find("new", &out), &dict["new"]);
    EXPECT_EQ(dict.find("absent", &out), nullptr);
    EXPECT_EQ(out, &mine);
}

// Takes keys of one length for equal, and counts insertions.
class LengthDict : public qzStrStrDictionary {
  public:
    qzDictBucket* addInternal(const void* key, const void* value) override {
        ++added;
        return qzStrStrDictionary::addInternal(key, value);
    }
    int added = 0;

  protected:
    unsigned hashKey(const void* key) const override { return lengthOf(key); }
    int compareKeys(const void* a, const void* b) const override {
        return lengthOf(a) != lengthOf(b);
    }
    static unsigned lengthOf(const void* key) { return static_cast<const qzStr*>(key)->length(); }
};

TEST(qzTypedDictionary, HooksOfAClassDerivedFromAMemberRule) {
    LengthDict lengths, merged;
    qzStrStrDictionary& dict = lengths;
    dict.add("one", "1");
    dict["two"].append("2");
    EXPECT_STREQ(dict.find("six")->c_str(), "12");
    dict.add("ten", "3");
    merged.qzStrStrDictionary::operator=(dict);
    EXPECT_STREQ(merged["six"].c_str(), "3");
    LengthDict copy(lengths);
    EXPECT_STREQ(copy.find("six")->c_str(), "3"); // its entry hangs where it did
    dict.remove("six");
    EXPECT_EQ(dict.size(), 0u);
    EXPECT_EQ(lengths.added + merged.added, 2 + 1);
}

TEST(qzVoidPtrDict, NewKeysHoldNull) {
    int target = 1;
    qzVoidPtrDict dict;
    EXPECT_EQ(dict["a"], nullptr);
    dict.add("a", &target);
    const qzVoidPtrDict copy(dict);
    EXPECT_EQ(*copy.find("a"), &target);
    EXPECT_EQ(*qzVoidPtrDictIter(&dict).getValue(), &target);
}

TEST(qzBinaryOTDict, ChainIsTheKeyWithoutItsTwoLowBits) {
    qzBinaryOTDict dict;
    for (unsigned long key : {0x78ul, 4ul, 0x7cul, 3ul, 0xfffffffcul, 7ul, 0ul})
        dict.add(key, key + 1);
    EXPECT_EQ(dict[1], 0u);
    std::vector<unsigned long> keys;
    for (qzBinaryOTDictIter i(dict); i.notDone(); ++i) {
        keys.push_back(*i.getKey());
        EXPECT_EQ(*i.getValue(), *i.getKey() == 1 ? 0 : *i.getKey() + 1);
    }
    EXPECT_EQ(keys, (std::vector<unsigned long>{1, 0, 0xfffffffc, 3, 0x7c, 7, 4, 0x78}));
}

TEST(qzStrSet, OperatorsReturnTheSetAndAddressesMeanIt) {
    qzStrSet vowels, letters(2);
    const qzStrSet& constant = vowels;
    for (const char* text : {"a", "e", "i"})
        vowels.add(text);
    for (const char* text : {"a", "b", "i", "c"})
        letters.add(text);
    EXPECT_EQ(&vowels, &(vowels -= letters));
    EXPECT_EQ(&constant, &vowels);
    EXPECT_TRUE(vowels.contains("e"));
    EXPECT_FALSE(vowels.contains("a"));
    EXPECT_STREQ((letters |= vowels).find("e")->c_str(), "e");
    EXPECT_EQ((letters &= vowels).size(), 1u);

    qzStrSetIter iter(letters);
    letters.remove(*iter.getKey());
    EXPECT_FALSE(iter.notDone());
    iter = vowels;
    EXPECT_STREQ(iter.getKey()->c_str(), "e");

    const auto travelled = [](qzStrSet set) { return set.size() + set.contains("e"); };
    EXPECT_EQ(travelled(letters), 0u); // by value, as it is empty
    vowels = letters;
    EXPECT_EQ(travelled(vowels), 0u);
    EXPECT_FALSE(qzStrSetIter(&vowels).notDone());
}

} // namespace
