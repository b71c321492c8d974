// A transcriber that keeps what it is given in memory, with the widths of a
// stream (longs have 4 bytes) and nothing between the values, and reads it back.
// It also keeps a log of the operations that were called.
#ifndef QZ_TESTS_SUPPORT_RECORDINGTRANSCRIBER_H
#define QZ_TESTS_SUPPORT_RECORDINGTRANSCRIBER_H

#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "util/Str.h"
#include "xdr/Transcriber.h"
#include "xdr/XDRObj.h"

class RecordingTranscriber : public qzTranscriber {
  public:
    RecordingTranscriber() : qzTranscriber(0) {}
    explicit RecordingTranscriber(const std::string& bytes) : qzTranscriber(1), bytes(bytes) {}

    using qzTranscriber::setStream;
    using qzTranscriber::xdr;

    void reset() override { log.clear(); }
    unsigned char xdr(char* v, unsigned n) override { return values("char", v, n); }
    unsigned char xdr(unsigned char* v, unsigned n) override { return values("uchar", v, n); }
    unsigned char xdr(short* v, unsigned n) override { return values("short", v, n); }
    unsigned char xdr(unsigned short* v, unsigned n) override { return values("ushort", v, n); }
    unsigned char xdr(long* v, unsigned n) override { return values("long", v, n); }
    unsigned char xdr(unsigned long* v, unsigned n) override { return values("ulong", v, n); }
    unsigned char xdr(float* v, unsigned n) override { return values("float", v, n); }
    unsigned char xdr(double* v, unsigned n) override { return values("double", v, n); }
    unsigned char xdr(qzStr* v, unsigned n) override {
        note("qzStr", n);
        for (unsigned i = 0; i < n; ++i) {
            if (!v[i].xdr(*this)) return 0;
        }
        return 1;
    }

    unsigned char xdr(char** p, unsigned n) override { return array("char*", p, n); }
    unsigned char xdr(unsigned char** p, unsigned n) override { return array("uchar*", p, n); }
    unsigned char xdr(short** p, unsigned n) override { return array("short*", p, n); }
    unsigned char xdr(unsigned short** p, unsigned n) override { return array("ushort*", p, n); }
    unsigned char xdr(long** p, unsigned n) override { return array("long*", p, n); }
    unsigned char xdr(unsigned long** p, unsigned n) override { return array("ulong*", p, n); }
    unsigned char xdr(float** p, unsigned n) override { return array("float*", p, n); }
    unsigned char xdr(double** p, unsigned n) override { return array("double*", p, n); }
    unsigned char xdr(char**) override { return 0; }
    unsigned char xdr(unsigned char**) override { return 0; }

    unsigned char xdr(void*, qzXDRObj*, qzTypeObj&, qzXDRObj*, void*) override { return 0; }
    unsigned char xdr(qzTypeObj& type, void* whole, void* part) override {
        log.push_back(std::string("base part ") + type.name + (whole == part ? " same" : " other"));
        return 1;
    }
    void* readObject(qzTypeObj&) override { return nullptr; }
    unsigned char writeObject(void*, qzXDRObj*) override { return 0; }
    const char* className() const override { return "RecordingTranscriber"; }

    std::string bytes;            // written so far, or to be read
    std::vector<std::string> log; // "ulong 1", "char* 4", ...

  private:
    void note(const char* operation, unsigned n) {
        log.push_back(std::string(operation) + " " + std::to_string(n));
    }

    template <class T> unsigned char values(const char* operation, T* v, unsigned n) {
        note(operation, n);
        return move(v, n);
    }

    template <class T> unsigned char array(const char* operation, T** p, unsigned n) {
        note(operation, n);
        if (isReading()) {
            if (n > left() / streamSize<T>()) return 0;
            *p = static_cast<T*>(std::malloc(n * sizeof(T)));
        }
        return move(*p, n);
    }

    template <class T> static constexpr std::size_t streamSize() {
        return std::is_same_v<T, long> || std::is_same_v<T, unsigned long> ? 4 : sizeof(T);
    }
    std::size_t left() const { return bytes.size() - position; }

    template <class T> unsigned char move(T* v, unsigned n) {
        if constexpr (streamSize<T>() != sizeof(T)) {
            using Narrow = std::conditional_t<std::is_signed_v<T>, int, unsigned>;
            for (unsigned i = 0; i < n; ++i) {
                Narrow narrow = static_cast<Narrow>(v[i]);
                if (isWriting() && static_cast<T>(narrow) != v[i]) return 0;
                if (!move(&narrow, 1)) return 0;
                v[i] = narrow;
            }
            return 1;
        } else {
            const std::size_t nbytes = n * sizeof(T);
            if (nbytes == 0) return 1;
            if (isWriting()) {
                bytes.append(reinterpret_cast<const char*>(v), nbytes);
                return 1;
            }
            if (left() < nbytes) return 0;
            std::memcpy(v, bytes.data() + position, nbytes);
            position += nbytes;
            return 1;
        }
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
