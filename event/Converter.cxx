#include "event/Converter.h"

#include <cassert>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "event/DataTypes.h"
#include "util/Str.h"
#include "util/detail/RawMemory.h"

qzConverter* qz_theConverters;

qzConverter::qzConverter(unsigned short from, unsigned short to, void (*function)())
    : qzInputChannel(from, nullptr, function, 0), targetType(to), next(qz_theConverters) {
    qz_theConverters = this;
}

qzConverter::qzConverter(const qzConverter* prototype)
    : qzInputChannel(prototype->type, nullptr, prototype->function, 0),
      targetType(prototype->targetType), next(nullptr) {
    chained = 1;
}

qzConverter::~qzConverter() {
    if (chained) return;
    qzConverter** link = &qz_theConverters;
    while (*link && *link != this)
        link = &(*link)->next;
    if (*link) *link = next;
}

qzConverter* qzConverter::findConverter(unsigned short from, unsigned short to) {
    for (const qzConverter* entry = qz_theConverters; entry; entry = entry->next) {
        if (entry->type == from && entry->targetType == to) return new qzConverter(entry);
    }
    return nullptr;
}

void qzConverter::splice(qzInputChannel* downstream) {
    assert(chained && !object);
    object = downstream;
    coalesce = downstream->coalesces();
    downstream->addRef();
}

// The standard conversions, each the function of a converter. The receiver runs
// inside the last call and may destroy every channel: nothing is used after it.

namespace {

template <class To> void deliver(qzInputChannel* downstream, To value) {
    reinterpret_cast<void (*)(void*, To)>(downstream->getFunction())(downstream->getObject(),
                                                                     std::move(value));
}

template <class From, class To> void cast(qzInputChannel* downstream, From value) {
    deliver<To>(downstream, static_cast<To>(value));
}

// Deliberate: the low byte of the bits, not whether they are zero: 256 and 1.0
// are false. Receivers get flags that were packed into numbers. Pinned by
// qzConverter.TruthValuesAreLowBytes.
template <class From> void lowByte(qzInputChannel* downstream, From value) {
    deliver(downstream, static_cast<unsigned char>(qzLoadWord(&value)));
}

// Truncated toward zero. What an int cannot hold gives the nearest one, and NaN
// 0, on every machine.
int nearestInt(double value) {
    if (std::isnan(value)) return 0;
    if (value >= INT_MAX) return INT_MAX;
    if (value <= INT_MIN) return INT_MIN;
    return static_cast<int>(value);
}
int nearestInt(long value) {
    if (value >= INT_MAX) return INT_MAX;
    if (value <= INT_MIN) return INT_MIN;
    return static_cast<int>(value);
}

template <class From> void truncate(qzInputChannel* downstream, From value) {
    deliver(downstream, nearestInt(value));
}

using Digits = char[32]; // room for "-2147483648" and "-1.79769e+308"

void print(Digits& digits, int value) { std::snprintf(digits, sizeof digits, "%d", value); }
void print(Digits& digits, double value) { std::snprintf(digits, sizeof digits, "%lg", value); }

// The text is gone after the call: receivers copy what they keep.
template <class From> void format(qzInputChannel* downstream, From value) {
    Digits digits;
    print(digits, value);
    deliver<char*>(downstream, digits);
}

void parseInt(qzInputChannel* downstream, char* text) {
    deliver(downstream, nearestInt(std::strtol(text, nullptr, 10)));
}

void parseFloat(qzInputChannel* downstream, char* text) {
    deliver(downstream, static_cast<float>(std::strtod(text, nullptr)));
}

// The text is that of the string at hand, good for the call.
void showText(qzInputChannel* downstream, qzStr string) { deliver(downstream, string.data); }

template <class From>
void addStandard(unsigned short from, unsigned short to,
                 void (*conversion)(qzInputChannel*, From)) {
    new qzConverter(from, to, reinterpret_cast<void (*)()>(conversion));
}

} // namespace

void qzConverter::createStandardConverters() {
    addStandard(qzDT_qzBool, qzDT_int, cast<unsigned char, int>);
    addStandard(qzDT_qzBool, qzDT_float, cast<unsigned char, float>);
    addStandard(qzDT_qzBool, qzDT_double, cast<unsigned char, double>);
    addStandard(qzDT_int, qzDT_qzBool, lowByte<int>);
    addStandard(qzDT_int, qzDT_float, cast<int, float>);
    addStandard(qzDT_int, qzDT_CharPtr, format<int>);
    addStandard(qzDT_float, qzDT_qzBool, lowByte<float>);
    addStandard(qzDT_float, qzDT_double, cast<float, double>);
    addStandard(qzDT_float, qzDT_int, truncate<float>);
    addStandard(qzDT_float, qzDT_CharPtr, format<float>);
    addStandard(qzDT_double, qzDT_qzBool, lowByte<double>);
    addStandard(qzDT_double, qzDT_float, cast<double, float>);
    addStandard(qzDT_double, qzDT_int, truncate<double>);
    addStandard(qzDT_double, qzDT_CharPtr, format<double>);
    addStandard(qzDT_CharPtr, qzDT_int, parseInt);
    addStandard(qzDT_CharPtr, qzDT_float, parseFloat);
    addStandard(qzDT_CharPtr, qzDT_qzStr, cast<char*, qzStr>);
    addStandard(qzDT_qzStr, qzDT_CharPtr, showText);
}
