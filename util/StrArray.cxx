#include "util/StrArray.h"

namespace {

unsigned char xdrEach(qzStrArray& strings, qzTranscriber& t) {
    const unsigned n = strings.length();
    for (unsigned i = 0; i < n; ++i) {
        if (!strings[i].xdr(t)) return 0;
    }
    return 1;
}

} // namespace

qzStrArray::~qzStrArray() = default;

unsigned char qzStrArray::xdr(qzTranscriber& t) {
    if (t.isReading()) return read(t);
    unsigned short streamElemSize = qzStreamSize<qzStr>();
    unsigned streamUsed = length() * streamElemSize;
    return xdrSizes(t, streamUsed, streamElemSize) && xdrEach(*this, t);
}

unsigned char qzStrArray::read(qzTranscriber& t) {
    unsigned streamUsed = 0;
    unsigned short streamElemSize = 0;
    clear(sizeof(qzStr));
    if (!xdrSizes(t, streamUsed, streamElemSize)) return 0;
    if (streamElemSize != qzStreamSize<qzStr>()) return 0;
    // The strings stay where they are from here on, as a transcriber may supply
    // their text only later. All are constructed before the first is read, so
    // that a failure leaves an array that can be destroyed.
    if (!takeRoom(streamUsed / streamElemSize)) return 0;
    used = allocated;
    createElements(data, used);
    return xdrEach(*this, t);
}
