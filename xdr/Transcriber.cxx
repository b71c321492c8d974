#include "xdr/Transcriber.h"

#include "util/detail/RawMemory.h"
#include "xdr/Stream.h"

namespace {

// Longs standing in for n ints during one call; a few need no allocation.
template <class Long> class LongCopy {
  public:
    explicit LongCopy(unsigned n)
        : longs(n <= few ? local : static_cast<Long*>(qzRawTryAlloc(n * sizeof(Long)))) {}
    ~LongCopy() {
        if (longs != local) qzRawFree(longs);
    }
    LongCopy(const LongCopy&) = delete;
    LongCopy& operator=(const LongCopy&) = delete;

    Long* get() const { return longs; } // null when memory cannot hold them

  private:
    static const unsigned few = 32;
    Long local[few];
    Long* longs;
};

template <class Long, class Int>
unsigned char throughLongs(qzTranscriber& t, Int* ints, unsigned n) {
    if constexpr (sizeof(Int) == sizeof(Long)) {
        return t.xdr(reinterpret_cast<Long*>(ints), n);
    } else {
        LongCopy<Long> copy(n);
        Long* longs = copy.get();
        if (!longs) return 0;
        if (t.isWriting()) {
            for (unsigned i = 0; i < n; ++i)
                longs[i] = ints[i];
        }
        if (!t.xdr(longs, n)) return 0;
        if (t.isReading()) {
            for (unsigned i = 0; i < n; ++i)
                ints[i] = static_cast<Int>(longs[i]);
        }
        return 1;
    }
}

template <class Long, class Int>
unsigned char pointerThroughLongs(qzTranscriber& t, Int** array, unsigned n) {
    if constexpr (sizeof(Int) == sizeof(Long)) {
        return t.xdr(reinterpret_cast<Long**>(array), n);
    } else {
        return 0;
    }
}

} // namespace

qzTranscriber::qzTranscriber(unsigned char reading) : reading(reading), stream(nullptr) {}

qzTranscriber::~qzTranscriber() { setStream(nullptr); }

void qzTranscriber::setStream(qzStream* newStream) {
    qzStream* previous = stream;
    stream = newStream;
    if (stream) stream->addRef();
    if (previous) previous->delRef();
}

unsigned char qzTranscriber::xdr(int* values, unsigned n) {
    return throughLongs<long>(*this, values, n);
}

unsigned char qzTranscriber::xdr(unsigned* values, unsigned n) {
    return throughLongs<unsigned long>(*this, values, n);
}

unsigned char qzTranscriber::xdr(int** array, unsigned n) {
    return pointerThroughLongs<long>(*this, array, n);
}

unsigned char qzTranscriber::xdr(unsigned** array, unsigned n) {
    return pointerThroughLongs<unsigned long>(*this, array, n);
}
