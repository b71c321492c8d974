// Values and their conversions.
#include <climits>
#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include "event/BoolData.h"
#include "event/CharPtrData.h"
#include "event/Converter.h"
#include "event/DoubleData.h"
#include "event/FloatData.h"
#include "event/IntData.h"
#include "event/LongData.h"
#include "event/StrData.h"
#include "event/VoidData.h"
#include "util/Sequencer.h"

namespace {

TEST(qzDrawDataTypes, DrawsTheCodesInTheirOrder) {
    qzDrawDataTypes();
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

const bool registered = (qzConverter::createStandardConverters(), true);

unsigned short typeOf(unsigned char) { return qzDT_qzBool; }
unsigned short typeOf(int) { return qzDT_int; }
unsigned short typeOf(float) { return qzDT_float; }
unsigned short typeOf(double) { return qzDT_double; }
unsigned short typeOf(const char*) { return qzDT_CharPtr; }
unsigned short typeOf(const qzStr&) { return qzDT_qzStr; }

// Texts are gone after the call.
template <class T> using Kept = std::conditional_t<std::is_same_v<T, const char*>, std::string, T>;
template <class To> void keep(void* kept, To value) { *static_cast<Kept<To>*>(kept) = value; }

// What arrives at an input of type To.
template <class To, class From> auto sent(From value) {
    Kept<To> kept{};
    const auto receiver = reinterpret_cast<void (*)()>(keep<To>);
    auto* const input = new qzInputChannel(typeOf(To()), &kept, receiver, 1);
    qzConverter* const converter = qzConverter::findConverter(typeOf(value), typeOf(To()));
    converter->addRef();
    converter->splice(input);
    EXPECT_TRUE(converter->coalesces());
    reinterpret_cast<void (*)(void*, From)>(converter->getFunction())(input, value);
    converter->delRef(); // the input's only holder
    return kept;
}
using Bool = unsigned char;
using Text = const char*;

TEST(qzConverter, TruthValuesAreLowBytes) {
    EXPECT_EQ(sent<Bool>(256), 0);
    EXPECT_EQ(sent<Bool>(0.1f), 0xCD); // 3DCCCCCD
    EXPECT_EQ(sent<Bool>(0.1), 0x9A);  // 3FB99999 9999999A
    EXPECT_EQ(sent<int>(Bool(0x81)), 0x81);
    EXPECT_EQ(sent<float>(Bool(0x81)) + sent<double>(Bool(0x81)), 258.0);
}

TEST(qzConverter, NumbersGoToTheNearestThereIs) {
    EXPECT_EQ(sent<int>(-2.9f), -2);
    EXPECT_EQ(sent<int>(std::nanf("")), 0);
    EXPECT_EQ(sent<int>(2147483648.0), INT_MAX);
    EXPECT_EQ(sent<int>(-2147483649.0), INT_MIN);
    EXPECT_EQ(sent<float>(16777219), 16777220.0f);
    EXPECT_EQ(sent<double>(sent<float>(0.1)), 0.1f);
    EXPECT_EQ(sent<Text>(INT_MIN), "-2147483648");
    EXPECT_EQ(sent<Text>(-1.17549e-38f), "-1.17549e-38");
    EXPECT_EQ(sent<Text>(-1.79769e+308), "-1.79769e+308");
    EXPECT_EQ(sent<Text>(sent<qzStr>(Text("text"))), "text");
    EXPECT_EQ(sent<int>(Text("42abc")), 42);
    EXPECT_EQ(sent<int>(Text("4294967298")), INT_MAX);
    EXPECT_EQ(sent<float>(Text("0.1kg")), 0.1f);
}

} // namespace
