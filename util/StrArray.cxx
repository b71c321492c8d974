#include "util/StrArray.h"

namespace {

unsigned char xdrStrings(qzStrArray& strings, unsigned from, unsigned to, qzTranscriber& t) {
    for (unsigned i = from; i < to; ++i) {
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
    return xdrSizes(t, streamUsed, streamElemSize) && xdrStrings(*this, 0, length(), t);
}

unsigned char qzStrArray::read(qzTranscriber& t) {
    unsigned streamUsed = 0;
    unsigned short streamElemSize = 0;
    clear(sizeof(qzStr));
    if (!xdrSizes(t, streamUsed, streamElemSize)) return 0;
    if (streamElemSize != qzStreamSize<qzStr>()) return 0;
    // The strings stay where they are from here on, as a transcriber may supply
    // their text only later. They are constructed before they are read, so that a
    // failure leaves an array that can be destroyed, but not all of a huge number
    // that is only claimed: the memory of a block costs nothing until it is used.
    const unsigned n = streamUsed / streamElemSize;
    const unsigned atOnce = 65536;
    if (!takeRoom(n, sizeof(qzStr))) return 0;
    for (unsigned have = 0; have < n;) {
        const unsigned wanted = n - have < atOnce ? n : have + atOnce;
        createElements(at(have), (wanted - have) * elemSize);
        used = wanted * elemSize;
        if (!xdrStrings(*this, have, wanted, t)) return 0;
        have = wanted;
    }
    return 1;
}
