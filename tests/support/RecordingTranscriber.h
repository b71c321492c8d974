// A writer that keeps the values it is given in memory, with the widths of a stream
// (longs have 4 bytes) and nothing between them, and the log of the calls. Made
// with bytes, it reads these.
#ifndef QZ_TESTS_SUPPORT_RECORDINGTRANSCRIBER_H
#define QZ_TESTS_SUPPORT_RECORDINGTRANSCRIBER_H

#include <cstdlib>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "xdr/BinaryWriter.h"
#include "xdr/TypeObj.h"

class RecordingTranscriber : public qzBinaryWriter {
  public:
    RecordingTranscriber() : qzBinaryWriter(nullptr) {}
    explicit RecordingTranscriber(const std::string& bytes)
        : qzBinaryWriter(nullptr), bytes(bytes) {
        reading = 1;
    }

    using qzBinaryWriter::setStream;
    using qzBinaryWriter::xdr;

    unsigned char xdr(char* v, unsigned n) override { return values("char", v, n); }
    unsigned char xdr(unsigned char* v, unsigned n) override { return values("uchar", v, n); }
    unsigned char xdr(short* v, unsigned n) override { return values("short", v, n); }
    unsigned char xdr(unsigned short* v, unsigned n) override { return values("ushort", v, n); }
    unsigned char xdr(long* v, unsigned n) override { return values("long", v, n); }
    unsigned char xdr(unsigned long* v, unsigned n) override { return values("ulong", v, n); }
    unsigned char xdr(float* v, unsigned n) override { return values("float", v, n); }
    unsigned char xdr(double* v, unsigned n) override { return values("double", v, n); }
    // The text of strings, which is there at once.
    unsigned char xdr(char** text, unsigned n) override {
        if (isReading()) {
            if (n > bytes.size() - position) return 0;
            *text = static_cast<char*>(std::malloc(n));
        }
        return xdr(*text, n);
    }
    unsigned char xdr(qzTypeObj& type, void* whole, void* part) override {
        log.push_back(std::string("base part ") + type.name + (whole == part ? " same" : " other"));
        return 1;
    }

    std::string bytes;            // written so far, or to be read
    std::vector<std::string> log; // "ulong 1", "char 4", ...

  private:
    template <class T> unsigned char values(const char* operation, T* v, unsigned n) {
        using Int = std::conditional_t<std::is_signed_v<T>, int, unsigned>;
        using Kept = std::conditional_t<std::is_integral_v<T> && (sizeof(T) > 4), Int, T>;
        log.push_back(std::string(operation) + " " + std::to_string(n));
        if (isReading() && n > (bytes.size() - position) / sizeof(Kept)) return 0;
        for (unsigned i = 0; i < n; ++i) {
            Kept value;
            if (isWriting()) {
                value = static_cast<Kept>(v[i]);
                bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
            } else {
                std::memcpy(&value, &bytes[position], sizeof value);
                position += sizeof value;
                v[i] = value;
            }
        }
        return 1;
    }

    std::size_t position = 0;
};

// The octets of a 32-bit or 16-bit value as they stand in a stream.
inline std::string word(unsigned value) {
    return std::string(reinterpret_cast<const char*>(&value), 4);
}
inline std::string half(unsigned short value) {
    return std::string(reinterpret_cast<const char*>(&value), 2);
}

// What an object writes.
template <class T> std::string written(T& object) {
    RecordingTranscriber t;
    return object.xdr(t) ? t.bytes : "failed";
}

#endif
