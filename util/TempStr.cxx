#include "util/TempStr.h"

#include "util/detail/RawMemory.h"

qzTempStr::qzTempStr(const char* a, unsigned lengthA, const char* b, unsigned lengthB)
    : data(indata), slength(qzRawSum(qzRawSum(lengthA, lengthB), 1)) {
    if (slength > sizeof indata) data = static_cast<char*>(qzRawAlloc(slength));
    qzRawMove(data, a, lengthA);
    qzRawMove(data + lengthA, b, lengthB);
    data[lengthA + lengthB] = 0;
}

qzTempStr::qzTempStr(const qzTempStr& other) : data(indata), slength(other.slength) {
    if (slength >= sizeof indata) data = static_cast<char*>(qzRawAlloc(slength));
    qzRawMove(data, other.data, slength);
}

qzTempStr::~qzTempStr() {
    if (data != indata) qzRawFree(data);
}

qzTempStr& qzTempStr::concat(const char* s, unsigned n) {
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

qzTempStr operator|(const qzStr& a, const qzStr& b) {
    return qzTempStr(a.data, a.length(), b.data, b.length());
}

qzTempStr operator|(const qzStr& a, const char* b) {
    return qzTempStr(a.data, a.length(), b, qzRawLength(std::strlen(b)));
}

qzTempStr operator|(const char* a, const qzStr& b) {
    return qzTempStr(a, qzRawLength(std::strlen(a)), b.data, b.length());
}

qzTempStr& operator|(const qzTempStr& temp, const qzStr& s) {
    return const_cast<qzTempStr&>(temp).concat(s.data, s.length());
}

qzTempStr& operator|(const qzTempStr& temp, const char* s) {
    return const_cast<qzTempStr&>(temp).concat(s, qzRawLength(std::strlen(s)));
}
