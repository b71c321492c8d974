#include "util/StrArray.h"

#include <algorithm>

#include "util/detail/ArraySort.h"
#include "util/detail/RawMemory.h"
#include "xdr/BinaryReader.h"

namespace {

unsigned char xdrStrings(qzStrArray& strings, unsigned from, unsigned to, qzTranscriber& t) {
    for (unsigned i = from; i < to; ++i) {
        if (!strings[i].xdr(t)) return 0;
    }
    return 1;
}

// Sorting. The strings are sorted together with the beginnings of their texts,
// so that most comparisons need not fetch a text from somewhere else in memory.

struct SortedString {
    unsigned long long beginning; // eight bytes of the text, the first one highest
    unsigned slength;
    char* data;
};

// Eight bytes from text[skip], or those before the NUL and zeroes.
unsigned long long beginningOf(const qzStr& s, std::size_t skip) {
    const char* text = s.data + skip;
    if (s.length() - skip >= 8 && !std::memchr(text, 0, 8)) {
        unsigned long long bytes;
        std::memcpy(&bytes, text, sizeof bytes);
        return __builtin_bswap64(bytes);
    }
    unsigned long long bytes = 0;
    for (int shift = 56; shift >= 0 && *text; shift -= 8)
        bytes |= static_cast<unsigned long long>(static_cast<unsigned char>(*text++)) << shift;
    return bytes;
}

// The order of strcmp on texts that are alike before their beginnings.
struct BeginningsFirst {
    std::size_t rest; // where the texts go on after their beginnings
    int operator()(const char* a, const char* b) const {
        const SortedString& first = *reinterpret_cast<const SortedString*>(a);
        const SortedString& second = *reinterpret_cast<const SortedString*>(b);
        if (first.beginning != second.beginning) return first.beginning < second.beginning ? -1 : 1;
        if (!(first.beginning & 255)) return 0; // both have ended
        return std::strcmp(first.data + rest, second.data + rest);
    }
};

// How many bytes, none of them NUL, all of the texts begin with.
std::size_t commonBeginning(const qzStr* strings, unsigned count) {
    std::size_t common = std::strlen(strings[0].data);
    for (unsigned i = 1; common && i < count; ++i) {
        const char* const text = strings[i].data;
        if (strings[i].length() >= common && !std::memcmp(text, strings[0].data, common)) continue;
        common = 0;
        while (text[common] == strings[0].data[common])
            ++common;
    }
    return common;
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

void qzStrArray::qsort(unsigned start, unsigned count) {
    assert(start <= length() && count <= length() - start);
    // A class derived from this one may compare in its own way.
    void* const block = count > 1 && typeid(*this) == typeid(qzStrArray)
                            ? qzRawTryAlloc(std::size_t(count) * sizeof(SortedString))
                            : nullptr;
    if (!block) return qzArray::qsort(start, count);
    qzStr* const strings = &(*this)[start];
    SortedString* const sorted = static_cast<SortedString*>(block);
    const std::size_t common = commonBeginning(strings, count);
    for (unsigned i = 0; i < count; ++i)
        sorted[i] = {beginningOf(strings[i], common), strings[i].slength, strings[i].data};
    const qzWordMover<SortedString> exchange;
    const BeginningsFirst compare{common + sizeof sorted->beginning};
    if (!qzPutInOrderByTurning(static_cast<char*>(block), count, exchange, compare, qzEqualDiffer))
        qzSortWith(sorted, count, exchange, compare);
    for (unsigned i = 0; i < count; ++i) {
        strings[i].slength = sorted[i].slength;
        strings[i].data = sorted[i].data;
    }
    qzRawFree(block);
}
