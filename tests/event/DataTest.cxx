#include <gtest/gtest.h>

#include <vector>

#include "event/BoolData.h"
#include "event/CharPtrData.h"
#include "event/DoubleData.h"
#include "event/FloatData.h"
#include "event/IntData.h"
#include "event/LongData.h"
#include "event/StrArrayData.h"
#include "event/StrData.h"
#include "event/VoidData.h"
#include "support/AllocationCounter.h"
#include "util/Sequencer.h"

namespace {

TEST(qzDrawDataTypes, DrawsTheCodesInTheirOrder) {
    const unsigned short inOrder[] = {qzDT_void,    qzDT_qzBool, qzDT_int,     qzDT_long,
                                      qzDT_float,   qzDT_double, qzDT_CharPtr, qzDT_qzStr,
                                      qzDT_VoidPtr, qzDT_ObjPtr, qzDT_DataPtr, qzDT_qzStrArray};
    for (unsigned i = 0; i < 12; ++i)
        EXPECT_EQ(inOrder[i], i);
    EXPECT_GE((*qz_nextDataType)(), 12u);
}

template <class T> void receive(void* got, T value) { *static_cast<T*>(got) = value; }

template <class Data, class T> void expectHolds(unsigned short code, T value) {
    Data data(value);
    T delivered{}, copied{};
    data.deliverTo(reinterpret_cast<void (*)()>(receive<T>), &delivered);
    data.getValue(qzDT_void, &copied);
    EXPECT_EQ(delivered, value);
    EXPECT_EQ(copied, value);
    EXPECT_EQ(data.getSize(), sizeof(T));
    EXPECT_EQ(data.getType(), code);
}

TEST(qzData, ValuesArriveInTheirNativeType) {
    expectHolds<qzBoolData, unsigned char>(qzDT_qzBool, 0x81);
    expectHolds<qzIntData, int>(qzDT_int, -70000);
    expectHolds<qzLongData, long>(qzDT_long, -2147483647L);
    expectHolds<qzFloatData, float>(qzDT_float, 0.1f);
    expectHolds<qzDoubleData, double>(qzDT_double, 0.1);
    expectHolds<qzCharPtrData, char*>(qzDT_CharPtr, strdup("adopted and freed"));
    expectHolds<qzStrData, qzStr>(qzDT_qzStr, qzStr("a\0b", 3));
}

TEST(qzData, OnlyVoidAndTextHaveTheirOwnName) {
    EXPECT_STREQ(qzVoidData().dataName(), "void");
    EXPECT_STREQ(qzCharPtrData(nullptr).dataName(), "char *");
    EXPECT_STREQ(qzIntData(1).dataName(), "TYPE");
}

TEST(qzStrArrayData, EveryCopyHasStringsOfItsOwn) {
    qzStrArray strings, got;
    strings.append("one");
    qzStrArrayData data(strings);
    data.getValue(qzDT_void, &got);
    got[0].append("!");
    data.deliverTo(reinterpret_cast<void (*)()>(receive<qzStrArray>), &got);
    EXPECT_STREQ(got[0].c_str(), "one");
}

// What a burst needed serves the next one, and goes bit by bit when none comes.
TEST(qzData, BlocksOfABurstAreRecycledAndThenReleased) {
    if (AllocationCounter::obstacle()) GTEST_SKIP() << AllocationCounter::obstacle();
    const auto send = [](unsigned n) {
        std::vector<qzData*> values(n);
        const AllocationCounter counter;
        for (qzData*& value : values)
            value = new qzIntData(1);
        for (qzData* value : values)
            delete value;
        return counter.counts();
    };
    send(10000);
    EXPECT_EQ(send(10000).allocations, 0u);
    unsigned releases = 0;
    for (unsigned i = 0; i < 100; ++i)
        releases += send(1).releases;
    EXPECT_GE(releases, 9u);
    EXPECT_LE(send(10000).allocations, releases);
}

} // namespace
