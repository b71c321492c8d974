// What strings, arrays, dictionaries and sets write, and what they make of it
// and of anything else that claims to be it.
#include <random>

#include <gtest/gtest.h>

#include "support/RecordingTranscriber.h"
#include "util/DoubleArray.h"
#include "util/FloatArray.h"
#include "util/IntArray.h"
#include "util/LongArray.h"
#include "util/StrArray.h"
#include "util/StrSet.h"
#include "util/StrSetIter.h"
#include "util/StrStrDictionary.h"
#include "util/StrStrDictionaryIter.h"
#include "util/TmpSet.h"
#include "util/UnsignedShortArray.h"
#include "util/VoidPtrDict.h"
#include "xdr/BinaryOTDict.h"

namespace {

std::string str(const std::string& text) {
    const unsigned stored = static_cast<unsigned>(text.size()) + 1;
    return word(stored) + (stored == 1 ? "" : std::string(text.c_str(), stored));
}

template <class T> bool reads(T& object, const std::string& bytes) {
    RecordingTranscriber t(bytes);
    return object.xdr(t);
}

// Whatever is cut off: the answer is false and the object can be used and
// destroyed.
template <class T> void expectEveryCutToFail(const std::string& bytes) {
    for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
        SCOPED_TRACE(cut);
        T* object = static_cast<T*>(T::newInstance(T().getTypeObj()));
        EXPECT_FALSE(reads(*object, bytes.substr(0, cut)));
        RecordingTranscriber t;
        EXPECT_TRUE(object->xdr(t));
        T::deleteInstance(object);
    }
}

// Strings

TEST(qzStrXdr, TextTravelsWithItsTerminator) {
    qzStr s("ab\0c", 4);
    EXPECT_EQ(written(s), word(5) + std::string("ab\0c", 5));
    qzStr empty;
    EXPECT_EQ(written(empty), word(1));
    qzStr emptyButOwning(0, ""); // slength 1, with a buffer
    EXPECT_EQ(written(emptyButOwning), word(1));

    qzStr back("previous text");
    ASSERT_TRUE(reads(back, written(s)));
    EXPECT_TRUE(back == s);
    ASSERT_TRUE(reads(back, word(1)));
    EXPECT_EQ(back.data, &qzStr::emptyString);
    expectEveryCutToFail<qzStr>(written(s));
}

TEST(qzStrXdr, LengthsThatNoTextHasFail) {
    qzStr s("kept?");
    EXPECT_FALSE(reads(s, word(0)));
    EXPECT_TRUE(s == "");
    s.append("usable");
    EXPECT_FALSE(reads(s, word(0xffffffff) + "abc"));
    s.append("again");
    EXPECT_TRUE(s == "again");
}

TEST(qzStrXdr, TextWithoutItsTerminatorFails) {
    qzStr s;
    EXPECT_FALSE(reads(s, word(5) + "abcde"));
    EXPECT_TRUE(s == "");
    EXPECT_FALSE(reads(s, word(5) + "ab"));
    EXPECT_EQ(s.data, &qzStr::emptyString);
}

// Arrays

TEST(qzArrayXdr, SizesAreTheStreamsOnEveryTarget) {
    qzLongArray longs;
    longs.append(-1);
    longs.append(0x12345678);
    EXPECT_EQ(written(longs), word(8) + half(4) + word(-1) + word(0x12345678));
    qzLongArray back;
    ASSERT_TRUE(reads(back, written(longs)));
    EXPECT_EQ(back.length(), 2u);
    EXPECT_EQ(back.elementSize(), sizeof(long));
    EXPECT_EQ(back[0], -1);

    qzStrArray strings;
    strings.append("x");
    strings.append("");
    EXPECT_EQ(written(strings), word(16) + half(8) + str("x") + str(""));
    qzStrArray stringsBack(2);
    stringsBack[0] = "replaced";
    ASSERT_TRUE(reads(stringsBack, written(strings)));
    EXPECT_EQ(stringsBack.length(), 2u);
    EXPECT_TRUE(stringsBack[0] == "x");
    EXPECT_EQ(stringsBack[1].data, &qzStr::emptyString);

    qzIntArray empty;
    EXPECT_EQ(written(empty), word(0) + half(4));
    EXPECT_TRUE(reads(back, written(empty)));
    EXPECT_EQ(back.length(), 0u);

    expectEveryCutToFail<qzLongArray>(written(longs));
    expectEveryCutToFail<qzStrArray>(written(strings));
}

TEST(qzArrayXdr, ScalarsMoveInOneCall) {
    qzDoubleArray a(1000);
    for (unsigned i = 0; i < a.length(); ++i)
        a[i] = i / 4.0;
    RecordingTranscriber writer;
    ASSERT_TRUE(a.xdr(writer));
    EXPECT_EQ(writer.log, (std::vector<std::string>{"ulong 1", "ushort 1", "double 1000"}));
    RecordingTranscriber reader(writer.bytes);
    qzDoubleArray back;
    ASSERT_TRUE(back.xdr(reader));
    EXPECT_EQ(reader.log, writer.log);
    EXPECT_EQ(back[999], 999 / 4.0);
}

TEST(qzXDRArray, ElementsOfAnotherSizeComeBackRight) {
    qzFloatArray floats;
    for (float f : {0.5f, -2.0f, 3.25f})
        floats.append(f);
    qzUnsignedShortArray carrier; // what a reader creates for any "ARRAY"
    ASSERT_TRUE(reads(carrier, written(floats)));
    EXPECT_EQ(carrier.length(), 3u);
    EXPECT_EQ(carrier.elementSize(), 4);
    float element;
    std::memcpy(&element, static_cast<qzArray&>(carrier)[2], sizeof element);
    EXPECT_EQ(element, 3.25f);
    EXPECT_EQ(written(carrier), written(floats));

    const qzUnsignedShortArray copy(carrier);
    EXPECT_EQ(copy.length(), 3u);

    // A long of 8 bytes in memory could not be told from a double.
    qzLongArray longs;
    EXPECT_EQ(reads(longs, word(8) + half(8) + "01234567"), sizeof(long) == 4);

    for (unsigned short width : {1, 2, 4, 8}) {
        const std::string bytes = word(width * 2) + half(width) + std::string(width * 2, 'x');
        ASSERT_TRUE(reads(carrier, bytes));
        EXPECT_EQ(carrier.length(), 2u);
        EXPECT_EQ(carrier.elementSize(), width);
        EXPECT_EQ(written(carrier), bytes);
    }
}

// What the stream chose must not let typed operations leave the block.
TEST(qzXDRArray, TypedUseOfAnotherSizeStaysInsideTheBlock) {
    qzDoubleArray a;
    ASSERT_TRUE(reads(a, word(3) + half(1) + "abc"));
    for (unsigned i = 0; i < a.length(); ++i)
        a[i] = 1.0;
    EXPECT_EQ(a.find(1.0), -1);
    qzUnsignedShortArray wide;
    ASSERT_TRUE(reads(wide, word(8) + half(8) + "01234567"));
    EXPECT_EQ(wide.find(0x3130), -1);
}

TEST(qzXDRArrayDeathTest, AddingToElementsOfAnotherSizeIsFatal) {
    qzDoubleArray a;
    ASSERT_TRUE(reads(a, word(3) + half(1) + "abc"));
    const char* const message = "^qzArray: elements of 8 bytes where 1 are held\n$";
    EXPECT_EXIT(a.append(1.0), testing::KilledBySignal(SIGABRT), message);
    EXPECT_EXIT(a.insert(1.0, 0), testing::KilledBySignal(SIGABRT), message);
    qzDoubleArray doubles(1);
    EXPECT_EXIT(a.append(doubles), testing::KilledBySignal(SIGABRT), message);
    EXPECT_EXIT(a.insert(doubles, 0), testing::KilledBySignal(SIGABRT), message);
}

TEST(qzArrayXdr, SizesThatContradictEachOtherFail) {
    const std::string data(64, 'x');
    for (unsigned short width : {0, 3, 5, 7, 9, 16, 0xffff}) {
        SCOPED_TRACE(width);
        qzIntArray ints;
        EXPECT_FALSE(reads(ints, word(width * 3) + half(width) + data));
        EXPECT_EQ(ints.length(), 0u);
        ints.append(1);
        EXPECT_EQ(ints[0], 1);
    }
    qzIntArray ints;
    EXPECT_FALSE(reads(ints, word(7) + half(4) + data));
    qzStrArray strings;
    for (unsigned short width : {1, 2, 4, 16}) {
        EXPECT_FALSE(reads(strings, word(16) + half(width) + data));
    }
    EXPECT_FALSE(reads(strings, word(9) + half(8) + data));
    EXPECT_EQ(strings.length(), 0u);
}

TEST(qzArrayXdr, CountsThatNothingBacksFail) {
    qzIntArray ints;
    EXPECT_FALSE(reads(ints, word(0xfffffffc) + half(4) + word(1)));
    EXPECT_FALSE(reads(ints, word(0x7ffffffc) + half(4) + std::string(5 << 20, 'x')));
    EXPECT_EQ(ints.length() * 4, 4u << 20); // what had arrived in whole pieces
    qzStrArray strings;
    EXPECT_FALSE(reads(strings, word(0xfffffff8) + half(8)));
    EXPECT_EQ(strings.length(), 0u);
}

TEST(qzArrayXdr, LargeArraysComeBackWhole) {
    qzIntArray a(700000); // more than the room that is taken at first
    for (unsigned i = 0; i < a.length(); ++i)
        a[i] = static_cast<int>(i * 7);
    qzIntArray back;
    ASSERT_TRUE(reads(back, written(a)));
    ASSERT_EQ(back.length(), a.length());
    for (unsigned i = 0; i < a.length(); ++i)
        ASSERT_EQ(back[i], a[i]);
}

// Dictionaries

struct Dict : qzStrStrDictionary {
    using qzStrStrDictionary::qzStrStrDictionary;
    unsigned chains() const { return buckets.length(); }
};

std::string order(qzStrStrDictionary& d) {
    std::string keys;
    for (qzStrStrDictionaryIter i(d); i.notDone(); ++i)
        keys += i.getKey()->data;
    return keys;
}

TEST(qzDictionaryXdr, EntriesCarryTheirChain) {
    Dict d(3);
    for (const char* key : {"a", "b", "c", "d"})
        d.add(key, qzStr(key) | "!");
    std::string expected = word(4) + word(8) + word(8) + word(3);
    for (qzStrStrDictionaryIter i(d); i.notDone(); ++i) {
        expected += str(i.getKey()->data) + str(i.getValue()->data) + word(i.getKey()->hash() % 3);
    }
    EXPECT_EQ(written(d), expected);

    Dict back(qzStrStrDictionary_type);
    ASSERT_TRUE(reads(back, expected));
    EXPECT_EQ(back.size(), 4u);
    EXPECT_EQ(back.chains(), 3u);
    EXPECT_EQ(written(back).size(), expected.size());
    ASSERT_TRUE(back.find("c"));
    EXPECT_TRUE(*back.find("c") == "c!");

    // Each chain comes back reversed, so twice restores the writer's bytes.
    Dict twice(qzStrStrDictionary_type);
    ASSERT_TRUE(reads(twice, written(back)));
    EXPECT_EQ(written(twice), expected);
    EXPECT_EQ(order(twice), order(d));

    ASSERT_TRUE(reads(back, written(d))); // over what it held
    EXPECT_EQ(back.size(), 4u);
    expectEveryCutToFail<qzStrStrDictionary>(expected);
}

TEST(qzDictionaryXdr, ImpossibleLayoutsFail) {
    const std::string entry = str("key") + str("value");
    const std::string good = word(1) + word(8) + word(8) + word(2) + entry + word(1);
    const struct {
        const char* what;
        std::string bytes;
    } rows[] = {
        {"chain index", word(1) + word(8) + word(8) + word(2) + entry + word(2)},
        {"no chains", word(1) + word(8) + word(8) + word(0) + entry + word(0)},
        {"key size", word(1) + word(4) + word(8) + word(2) + entry + word(1)},
        {"value size", word(1) + word(8) + word(0xffffffff) + word(2) + entry + word(1)},
        {"chains beyond memory", word(1) + word(8) + word(8) + word(0xffffffff) + entry + word(1)},
        {"count", word(0xffffffff) + word(8) + word(8) + word(2) + entry + word(1)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Dict d(qzStrStrDictionary_type);
        EXPECT_FALSE(reads(d, row.bytes));
        d.add("still", "usable");
        EXPECT_TRUE(d.find("still"));
    }
    Dict d(qzStrStrDictionary_type);
    EXPECT_TRUE(reads(d, good));
}

TEST(qzDictionaryXdr, PointersAndWordsStayAtHome) {
    qzVoidPtrDict pointers(5);
    RecordingTranscriber empty;
    EXPECT_TRUE(pointers.doxdr(empty));
    EXPECT_EQ(empty.bytes, word(0) + word(8) + word(4) + word(5));
    pointers.add("key", nullptr);
    RecordingTranscriber full;
    EXPECT_FALSE(pointers.doxdr(full));
    EXPECT_EQ(full.bytes, word(1) + word(8) + word(4) + word(5)); // not even the key

    qzBinaryOTDict words(5);
    RecordingTranscriber counts;
    EXPECT_TRUE(words.doxdr(counts));
    EXPECT_EQ(counts.bytes, word(0) + word(4) + word(4) + word(5));
    words.add(4, 1);
    EXPECT_FALSE(words.doxdr(counts));
}

// Sets

TEST(qzSetXdr, KeysCarryTheirChain) {
    qzStrSet s(3);
    for (const char* key : {"a", "b", "c", "d"})
        s.add(key);
    std::string expected = word(4) + word(8) + word(3);
    for (qzStrSetIter i(s); i.notDone(); ++i) {
        expected += str(i.getKey()->data) + word(i.getKey()->hash() % 3);
    }
    EXPECT_EQ(written(s), expected);
    qzStrSet back(qzStrSet_type);
    ASSERT_TRUE(reads(back, expected));
    EXPECT_EQ(back.size(), 4u);
    EXPECT_TRUE(back.contains("d"));
    qzStrSet twice(qzStrSet_type);
    ASSERT_TRUE(reads(twice, written(back)));
    EXPECT_EQ(written(twice), expected);
    ASSERT_TRUE(reads(back, expected)); // over what it held
    EXPECT_EQ(back.size(), 4u);
    expectEveryCutToFail<qzStrSet>(expected);
}

TEST(qzSetXdr, ImpossibleLayoutsFail) {
    const std::string entry = str("key");
    for (const std::string& bytes : {
             word(1) + word(8) + word(2) + entry + word(2),          // chain index
             word(1) + word(8) + word(0) + entry + word(0),          // no chains
             word(1) + word(0) + word(2) + entry + word(1),          // key size
             word(1) + word(0xffffffff) + word(2) + entry + word(1), // key size
             word(1) + word(8) + word(0xffffffff) + entry + word(1), // chains beyond memory
             word(2) + word(8) + word(2) + entry + word(1),          // count
         }) {
        qzStrSet s(qzStrSet_type);
        EXPECT_FALSE(reads(s, bytes));
    }
}

TEST(qzSetXdr, CopyOfAnEmptySetComesBackAsOne) {
    const qzStrSet empty(7);
    qzStrSet copy(empty);
    EXPECT_EQ(written(copy), word(0) + word(0) + word(0));
    qzStrSet back(qzStrSet_type);
    EXPECT_TRUE(reads(back, written(copy)));
    EXPECT_EQ(back.size(), 0u);
    EXPECT_FALSE(back.contains("x"));
    back.add("x");
    EXPECT_TRUE(back.contains("x"));
}

TEST(qzSetXdr, SetsGoByTheNameOfTheBase) {
    EXPECT_STREQ(qzStrSet(1).className(), "qzXDRObj");
    EXPECT_STREQ(qzStrSet(1).getTypeObj().name, "SET");
}

TEST(qzSetXdr, TmpSetFailsAtItsFirstKey) {
    struct Bytes : qzTmpSet {
        Bytes() : qzTmpSet(qzStrSet(1)) {
            buckets.resize(1);
            keySize = 4;
        }
    } s;
    RecordingTranscriber t;
    EXPECT_TRUE(s.doxdr(t));
    s.add("four");
    EXPECT_FALSE(s.doxdr(t));
}

} // namespace
