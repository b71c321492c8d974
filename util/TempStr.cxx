#include "util/TempStr.h"

#include "util/detail/RawMemory.h"

void qzTempStr::build(const char* a, unsigned lengthA, const char* b, unsigned lengthB) {
    slength = qzRawSum(qzRawSum(lengthA, lengthB), 1);
    if (slength > sizeof indata) data = static_cast<char*>(qzRawAlloc(slength));
    qzRawMove(data, a, lengthA);
    qzRawMove(data + lengthA, b, lengthB);
    data[length()] = 0;
}

qzTempStr::qzTempStr(const qzTempStr& other) : data(indata), slength(other.slength) {
    if (slength >= sizeof indata) data = static_cast<char*>(qzRawAlloc(slength));
    qzRawMove(data, other.data, slength);
}

void qzTempStr::tooLong() { qzRawExhausted(); }

qzTempStr& qzTempStr::concatLong(const char* s, unsigned n) {
    const bool inside = qzRawInside(s, data, slength);
    const auto offset = inside ? s - data : 0;
    const unsigned wanted = qzRawSum(slength, n);
    if (data != indata) {
        data = static_cast<char*>(qzRawGrow(data, wanted));
    } else if (wanted > sizeof indata) {
        data = static_cast<char*>(qzRawAlloc(wanted));
        qzRawMove(data, indata, slength);
    }
    qzRawMove(data + length(), inside ? data + offset : s, n);
    slength = wanted;
    data[length()] = 0;
    return *this;
}
