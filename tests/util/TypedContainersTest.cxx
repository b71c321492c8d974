#include <gtest/gtest.h>

#include <cstdlib>

#include "util/StrSetIter.h"
#include "util/StrStrDictionaryIter.h"
#include "util/VoidPtrDictIter.h"
#include "xdr/BinaryOTDictIter.h"

namespace {

// The address sanitizer sees strings that are not destroyed once.
TEST(qzStrStrDictionary, FindLeavesItsSecondArgumentAlone) {
    qzStrStrDictionary dict(3), merged(1);
    EXPECT_EQ(dict["new"].length(), 0u);
    dict["new"].append("text");
    dict.add("other", *dict.find("new"));
    dict.add("other", *dict.find("other"));
    qzStr mine, *out = &mine;
    EXPECT_EQ(dict.find("new", &out), &dict["new"]);
    EXPECT_EQ(dict.find("absent", &out), nullptr);
    EXPECT_EQ(out, &mine);
    qzStrStrDictionary copy(dict);
    merged.add("new", "replaced");
    merged = copy;
    qzStrStrDictionaryIter i(&merged);
    merged.remove(*i.getKey());
    qzStr* const cut = merged.cut(*(++i).getKey()); // behind a removed entry: the same
    EXPECT_STREQ(cut->c_str(), "text");
    EXPECT_EQ(copy.size() - merged.size(), 2u);
    cut->~qzStr();
    std::free(cut);
}

// Takes keys of one length for equal.
struct LengthDict : qzStrStrDictionary {
    unsigned hashKey(const void* key) const override { return lengthOf(key); }
    int compareKeys(const void* a, const void* b) const override {
        return lengthOf(a) != lengthOf(b);
    }
    static unsigned lengthOf(const void* key) { return static_cast<const qzStr*>(key)->length(); }
};

TEST(qzTypedDictionary, HooksOfAClassDerivedFromAMemberRule) {
    LengthDict lengths;
    lengths.add("one", "1");
    lengths["two"].append("2");
    EXPECT_STREQ(LengthDict(lengths).find("six")->c_str(), "12"); // hangs where it did
    lengths.remove("ten");
    EXPECT_EQ(lengths.size(), 0u);
}

TEST(qzTypedDictionary, PlainMembersHashAndDefaultTheirOwnWay) {
    qzVoidPtrDict pointers;
    EXPECT_EQ(pointers["a"], nullptr);
    qzBinaryOTDict words;
    words.add(0x7c, 1); // the chain is the key without its two low bits: 0
    words.add(4, words[3]);
    EXPECT_EQ(words[0xfffffffc], 0u);
    std::string keys;
    for (qzBinaryOTDictIter i(words); i.notDone(); ++i)
        keys += std::to_string(*i.getKey()) + '=' + std::to_string(*i.getValue()) + ' ';
    EXPECT_EQ(keys, "4294967292=0 3=0 124=1 4=0 ");
}

TEST(qzStrSet, OperatorsReturnTheSetAndAddressesMeanIt) {
    qzStrSet vowels, letters(2);
    vowels.add("a");
    vowels.add("e");
    letters.add("a");
    EXPECT_EQ(&(vowels -= letters), &vowels);
    EXPECT_FALSE(vowels.contains("a"));
    EXPECT_STREQ((letters |= vowels).find("e")->c_str(), "e");
    qzStrSetIter iter(&(letters &= vowels));
    letters.remove(*iter.getKey());
    EXPECT_EQ(iter.getKey(), nullptr);
    vowels = letters; // empty
    EXPECT_FALSE(vowels.contains("e"));
}

} // namespace
