// What the library's classes write, what they make of it and of anything else that
// claims to be it, and the types by which streams name them.
#include <numeric>

#include <gtest/gtest.h>

#include "support/RecordingTranscriber.h"
#include "util/BoolArray.h"
#include "util/CharArray.h"
#include "util/DoubleArray.h"
#include "util/FloatArray.h"
#include "util/IntArray.h"
#include "util/LongArray.h"
#include "util/ShortArray.h"
#include "util/StrArray.h"
#include "util/StrSet.h"
#include "util/StrSetIter.h"
#include "util/StrStrDictionary.h"
#include "util/StrStrDictionaryIter.h"
#include "util/UnsignedCharArray.h"
#include "util/UnsignedLongArray.h"
#include "util/UnsignedShortArray.h"
#include "util/VoidPtrArray.h"
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

// The bytes, and any beginning of them: false but for the whole, and the object
// can be used and destroyed.
template <class T> void expectRoundTripOrFailure(const std::string& bytes) {
    for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
        SCOPED_TRACE(cut);
        T* object = static_cast<T*>(T::newInstance(T().getTypeObj()));
        const bool whole = cut == bytes.size();
        EXPECT_EQ(reads(*object, bytes.substr(0, cut)), whole);
        const std::string again = written(*object); // it can be used, whatever came
        if (whole) {
            EXPECT_EQ(again.size(), bytes.size());
        }
        T::deleteInstance(object);
    }
}

TEST(qzStrXdr, TextTravelsWithItsTerminatorOrNotAtAll) {
    qzStr s("ab\0c", 4), back("previous text"), empty, emptyButOwning(0, "");
    EXPECT_EQ(written(s), word(5) + std::string("ab\0c", 5));
    EXPECT_EQ(written(empty), word(1));
    EXPECT_EQ(written(emptyButOwning), word(1));
    ASSERT_TRUE(reads(back, written(s)));
    EXPECT_TRUE(back == s);
    expectRoundTripOrFailure<qzStr>(written(s));
    for (const std::string& bytes :
         {word(0), word(0xffffffff) + "abc", word(5) + "abcde", word(5) + "ab"}) {
        EXPECT_FALSE(reads(back, bytes));
        EXPECT_EQ(back.data, &qzStr::emptyString);
        back.append("usable");
    }
    ASSERT_TRUE(reads(back, word(1)));
    EXPECT_EQ(back.data, &qzStr::emptyString);
}

// Arrays

TEST(qzArrayXdr, SizesAreTheStreamsOnEveryTarget) {
    qzLongArray longs, back;
    longs.append(-1);
    longs.append(0x12345678);
    EXPECT_EQ(written(longs), word(8) + half(4) + word(-1) + word(0x12345678));
    ASSERT_TRUE(reads(back, written(longs)));
    EXPECT_EQ(back.elementSize(), sizeof(long));
    EXPECT_EQ(back[0], -1);
    expectRoundTripOrFailure<qzLongArray>(written(longs));

    qzStrArray strings;
    strings.append("x");
    strings.append("");
    const std::string bytes = word(16) + half(8) + str("x") + str("");
    EXPECT_EQ(written(strings), bytes);
    ASSERT_TRUE(reads(strings, bytes)); // in place of what is there
    EXPECT_EQ(written(strings), bytes);
    expectRoundTripOrFailure<qzStrArray>(bytes);
}

TEST(qzArrayXdr, ScalarsMoveInOneCallAndLargeOnesWhole) {
    for (unsigned n : {1000u, 400000u}) { // more than the room that is taken at first
        qzDoubleArray a(n), back;
        std::iota(&a[0], &a[0] + n, 0.25);
        RecordingTranscriber writer;
        ASSERT_TRUE(a.xdr(writer));
        EXPECT_EQ(writer.log,
                  (std::vector<std::string>{"ulong 1", "ushort 1", "double " + std::to_string(n)}));
        RecordingTranscriber reader(writer.bytes);
        ASSERT_TRUE(back.xdr(reader));
        EXPECT_TRUE(n > 1000 || reader.log == writer.log);
        EXPECT_EQ(written(back), writer.bytes);
    }
}

TEST(qzXDRArray, ElementsOfAnotherSizeComeBackRight) {
    qzUnsignedShortArray carrier; // what a reader creates for any "ARRAY"
    for (unsigned short width : {1, 2, 4, 8}) {
        const std::string bytes = word(width * 3) + half(width) + std::string(width * 3, 'x');
        ASSERT_TRUE(reads(carrier, bytes));
        EXPECT_EQ(qzUnsignedShortArray(carrier).length(), 3u);
        EXPECT_EQ(carrier.elementSize(), width);
        EXPECT_EQ(written(carrier), bytes);
        EXPECT_EQ(carrier.find('x' * 0x101), width == 2 ? 0 : -1);
    }
    qzLongArray longs; // one of 8 bytes could not be told from a double
    EXPECT_EQ(reads(longs, word(8) + half(8) + "01234567"), sizeof(long) == 4);
}

// What the stream chose must not let typed operations leave the block.
TEST(qzXDRArrayDeathTest, AddingToElementsOfAnotherSizeIsFatal) {
    qzDoubleArray a, doubles(1);
    ASSERT_TRUE(reads(a, word(3) + half(1) + "abc"));
    for (unsigned i = 0; i < a.length(); ++i)
        a[i] = 1.0;
    const char* const message = "^qzArray: elements of 8 bytes where 1 are held\n$";
    const auto aborted = testing::KilledBySignal(SIGABRT);
    EXPECT_EXIT(a.append(1.0), aborted, message);
    EXPECT_EXIT(a.insert(1.0, 0), aborted, message);
    EXPECT_EXIT(a.append(doubles), aborted, message);
    EXPECT_EXIT(a.insert(doubles, 0), aborted, message);
}

TEST(qzArrayXdr, SizesThatContradictEachOtherOrAreOnlyClaimedFail) {
    const std::string data(64, 'x');
    qzIntArray ints;
    for (unsigned short width : {0, 3, 5, 7, 9, 16, 0xffff})
        EXPECT_FALSE(reads(ints, word(width * 3) + half(width) + data)) << width;
    EXPECT_FALSE(reads(ints, word(7) + half(4) + data));
    EXPECT_FALSE(reads(ints, word(0xfffffffc) + half(4) + word(1)));
    ints.append(1);
    EXPECT_EQ(ints[0], 1);
    EXPECT_FALSE(reads(ints, word(0x7ffffffc) + half(4) + std::string(5 << 20, 'x')));
    EXPECT_EQ(ints.length() * 4, 4u << 20); // what had arrived in whole pieces

    qzStrArray strings;
    std::string empties;
    for (unsigned i = 0; i < 16; ++i)
        empties += word(1);
    for (unsigned short width : {1, 2, 4, 16})
        EXPECT_FALSE(reads(strings, word(16) + half(width) + empties));
    EXPECT_FALSE(reads(strings, word(9) + half(8) + empties));
    EXPECT_FALSE(reads(strings, word(0xfffffff8) + half(8)));
    EXPECT_LE(strings.length(), 65536u);
}

// Dictionaries and sets

// Each chain comes back reversed, so twice restores the writer's bytes.
template <class T> void expectReversal(T& full, const std::string& expected) {
    T back(31);
    EXPECT_EQ(written(full), expected);
    ASSERT_TRUE(reads(back, expected));
    EXPECT_NE(written(back), expected);
    EXPECT_TRUE(back.find("c"));
    ASSERT_TRUE(reads(full, written(back))); // in place of what is there
    EXPECT_EQ(written(full), expected);
    expectRoundTripOrFailure<T>(expected);
}

TEST(qzDictionaryXdr, EntriesCarryTheirChain) {
    qzStrStrDictionary d(3);
    for (const char* key : {"a", "b", "c", "d"})
        d.add(key, qzStr(key) | "!");
    std::string expected = word(4) + word(8) + word(8) + word(3);
    for (qzStrStrDictionaryIter i(d); i.notDone(); ++i)
        expected += str(i.getKey()->data) + str(i.getValue()->data) + word(i.getKey()->hash() % 3);
    expectReversal(d, expected);
}

TEST(qzSetXdr, KeysCarryTheirChain) {
    qzStrSet s(3);
    for (const char* key : {"a", "b", "c", "d"})
        s.add(key);
    std::string expected = word(4) + word(8) + word(3);
    for (qzStrSetIter i(s); i.notDone(); ++i)
        expected += str(i.getKey()->data) + word(i.getKey()->hash() % 3);
    expectReversal(s, expected);
}

template <class T> void expectRefused(const std::vector<std::string>& layouts) {
    for (const std::string& bytes : layouts) {
        SCOPED_TRACE(&bytes - layouts.data());
        T object;
        EXPECT_FALSE(reads(object, bytes));
        EXPECT_NE(written(object), "failed"); // it can be used
    }
}

TEST(qzDictionaryXdr, ImpossibleLayoutsFailThereAndInSets) {
    const std::string key = str("key"), entry = key + str("value"), sizes = word(8) + word(8);
    expectRefused<qzStrStrDictionary>({
        word(1) + sizes + word(2) + entry + word(2),                      // chain index
        word(1) + sizes + word(0) + entry + word(0),                      // no chains
        word(1) + word(4) + word(8) + word(2) + entry + word(1),          // key size
        word(1) + word(8) + word(0xffffffff) + word(2) + entry + word(1), // value size
        word(1) + sizes + word(0xffffffff) + entry + word(1),             // chains beyond memory
        word(0xffffffff) + sizes + word(2) + entry + word(1),             // count
    });
    expectRefused<qzStrSet>({
        word(1) + word(8) + word(2) + key + word(2),
        word(1) + word(8) + word(0) + key + word(0),
        word(1) + word(0) + word(2) + key + word(1),
        word(1) + word(0xffffffff) + word(2) + key + word(1),
        word(1) + word(8) + word(0xffffffff) + key + word(1),
        word(2) + word(8) + word(2) + key + word(1),
    });
}

TEST(qzDictionaryXdr, PointersAndWordsStayAtHome) {
    qzVoidPtrDict pointers(5);
    qzBinaryOTDict words(5);
    RecordingTranscriber t;
    EXPECT_TRUE(words.doxdr(t) && pointers.doxdr(t));
    words.add(4, 1);
    pointers.add("key", nullptr);
    EXPECT_FALSE(words.doxdr(t) || pointers.doxdr(t));
    const std::string wordSizes = word(4) + word(4) + word(5);
    const std::string pointerSizes = word(8) + word(4) + word(5);
    EXPECT_EQ(t.bytes, word(0) + wordSizes + word(0) + pointerSizes + word(1) + wordSizes +
                           word(1) + pointerSizes);
}

TEST(qzSetXdr, CopyOfAnEmptySetComesBackUsable) {
    const qzStrSet empty(7);
    qzStrSet copy(empty), back;
    EXPECT_EQ(written(copy), word(0) + word(0) + word(0));
    EXPECT_TRUE(reads(back, written(copy)));
    back.add("x");
    EXPECT_TRUE(back.contains("x"));
}

TEST(qzSetXdr, TmpSetFailsAtItsFirstKey) {
    struct Hook : qzTmpSet {
        using qzTmpSet::qzTmpSet;
        using qzTmpSet::xdrKey;
    };
    RecordingTranscriber t;
    EXPECT_FALSE(Hook(qzStrSet(1)).xdrKey(t, nullptr));
}

TEST(qzSetXdr, SetsGoByTheNameOfTheBase) { EXPECT_STREQ(qzStrSet(1).className(), "qzXDRObj"); }

// Types

// Whoever can be created names its type, writes itself and is destroyed without a
// leak.
TEST(qzTypeObj, LibraryTypesAreRegisteredAtLoadTime) {
    for (qzTypeObj* type : {&qzXDRObj_type, &qzStr_type, &qzArray_type, &qzDictionary_type,
                            &qzSet_type, &qzStrSet_type, &qzStrStrDictionary_type}) {
        EXPECT_EQ(qzTypeObj::findType(type->name), type) << type->name;
        EXPECT_EQ(type->version, 1u);
    }
    EXPECT_STREQ(qzStrSet_type.name, "SET");
    EXPECT_STREQ(qzStrStrDictionary_type.name, "DICT");
    EXPECT_EQ(qzTypeObj::findType("no such type"), nullptr);
    for (qzTypeObj* type :
         {&qzXDRObj_type, &qzBoolArray_type, &qzCharArray_type, &qzDoubleArray_type,
          &qzFloatArray_type, &qzIntArray_type, &qzLongArray_type, &qzShortArray_type,
          &qzStrArray_type, &qzUnsignedCharArray_type, &qzUnsignedLongArray_type,
          &qzUnsignedShortArray_type, &qzStrSet_type, &qzStrStrDictionary_type}) {
        qzXDRObj* object = static_cast<qzXDRObj*>(type->create(*type));
        EXPECT_EQ(&object->getTypeObj(), type);
        RecordingTranscriber t;
        EXPECT_TRUE(type->xdr(object, t));
        type->destroy(object);
        type->destroy(nullptr);
    }
    qzStr_type.destroy(qzStr_type.create(qzStr_type));
}

TEST(qzXDRArray, ArrayNameResolvesToUnsignedShort) {
    EXPECT_EQ(qzTypeObj::findType("ARRAY"), &qzUnsignedShortArray_type);
}

TEST(qzTypeObj, LastRegistrationOfANameWins) {
    static qzTypeObj first("TypeObjTest", 1, nullptr, nullptr, nullptr);
    static qzTypeObj second("TypeObjTest", 2, nullptr, nullptr, nullptr);
    EXPECT_EQ(qzTypeObj::findType("TypeObjTest"), &second);
}

TEST(qzXDRObj, StaticTranscriptionIsTheBasesOwn) {
    qzIntArray array(1);
    RecordingTranscriber t;
    EXPECT_TRUE(qzXDRObj::xdr(static_cast<qzXDRObj*>(&array), t));
    EXPECT_TRUE(t.log.empty());
    EXPECT_FALSE(qzXDRObj().xdrFail(t, nullptr));
}

// Classes without a transcription of their own hand themselves over as a base
// part at the object's own address, which every transcriber passes over.
TEST(qzXDRObj, BasePartsStandAtTheObjectsAddress) {
    RecordingTranscriber t;
    EXPECT_TRUE(qzVoidPtrArray(2).xdr(t) && qzVoidPtrDict(0).xdr(t));
    EXPECT_EQ(t.log,
              (std::vector<std::string>{"base part qzXDRObj same", "base part qzDictionary same"}));
}

} // namespace
