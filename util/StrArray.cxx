#include "util/StrArray.h"

#include <algorithm>

#include "xdr/BinaryReader.h"

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
    // Strings are constructed before they are read, so that a failure leaves an
    // array that can be destroyed. A binary reader supplies their text only later
    // and is told of strings that move, so that room can be taken as they come; a
    // transcriber of another kind gets strings that stay where they are.
    const unsigned n = streamUsed / streamElemSize;
    const unsigned first = 65536;
    qzBinaryReader* const reader = n > first ? dynamic_cast<qzBinaryReader*>(&t) : nullptr;
    if (!reader && !takeRoom(n, sizeof(qzStr))) return 0;
    for (unsigned have = 0; have < n;) {
        const unsigned wanted = std::min(n - have, std::max(first, have)) + have;
        if (reader) {
            const char* const old = static_cast<char*>(data);
            if (!takeRoom(wanted, sizeof(qzStr))) return 0;
            reader->membersMoved(old, used, static_cast<char*>(data));
        }
        createElements(at(have), (wanted - have) * elemSize);
        used = wanted * elemSize;
        if (!xdrStrings(*this, have, wanted, t)) return 0;
        have = wanted;
    }
    return 1;
}
