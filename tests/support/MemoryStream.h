// A stream over bytes in memory. It refuses to take more than `limit`.
#ifndef QZ_TESTS_SUPPORT_MEMORYSTREAM_H
#define QZ_TESTS_SUPPORT_MEMORYSTREAM_H

#include <cstring>
#include <string>

#include "xdr/Stream.h"

class MemoryStream : public qzStream {
  public:
    explicit MemoryStream(const std::string& bytes = "") : bytes(bytes) {}

    unsigned char hasError() override { return 0; }
    unsigned char atEOF() override { return 0; }
    unsigned char isReading() override { return 1; }
    unsigned char isWriting() override { return 1; }
    qzStreamType getType() override { return qzST_ReadWrite; }

    unsigned char getBytes(char* to, unsigned n) override { return get(to, n); }
    unsigned char getShorts(short* to, unsigned n) override { return get(to, n * 2); }
    unsigned char getInts(int* to, unsigned n) override { return get(to, n * 4); }
    unsigned char getLongs(long* to, unsigned n) override {
        for (unsigned i = 0; i < n; ++i) {
            int value;
            if (!get(&value, 4)) return 0;
            to[i] = value;
        }
        return 1;
    }
    unsigned char getFloats(float* to, unsigned n) override { return get(to, n * 4); }
    unsigned char getDoubles(double* to, unsigned n) override { return get(to, n * 8); }
    unsigned char putBytes(const char* from, unsigned n) override { return put(from, n); }
    unsigned char putShorts(const short* from, unsigned n) override { return put(from, n * 2); }
    unsigned char putInts(const int* from, unsigned n) override { return put(from, n * 4); }
    unsigned char putLongs(const long* from, unsigned n) override {
        for (unsigned i = 0; i < n; ++i) {
            const int value = static_cast<int>(from[i]);
            if (!put(&value, 4)) return 0;
        }
        return 1;
    }
    unsigned char putFloats(const float* from, unsigned n) override { return put(from, n * 4); }
    unsigned char putDoubles(const double* from, unsigned n) override { return put(from, n * 8); }

    std::string bytes; // written so far, or to be read
    std::size_t limit = 1u << 30;

  private:
    unsigned char get(void* to, std::size_t nbytes) {
        if (bytes.size() - position < nbytes) return 0;
        std::memcpy(to, bytes.data() + position, nbytes);
        position += nbytes;
        return 1;
    }
    unsigned char put(const void* from, std::size_t nbytes) {
        if (bytes.size() + nbytes > limit) return 0;
        bytes.append(static_cast<const char*>(from), nbytes);
        return 1;
    }
    std::size_t position = 0;
};

#endif
