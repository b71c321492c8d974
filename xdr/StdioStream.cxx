#include "xdr/StdioStream.h"

#include <fcntl.h>
#include <unistd.h>

#include "util/detail/RawMemory.h"
#include "xdr/StreamModes.h"

namespace {

int openFile(const char* path, qzStream::qzStreamType type, unsigned mode) {
    const int fd = open(path, unixType(type));
    if (fd >= 0 || type == qzStream::qzST_Read) return fd;
    return open(path, unixType(type) | O_CREAT, mode);
}

FILE* wrap(int fd, qzStream::qzStreamType type) {
    const char* mode = stdioType(type);
    return mode ? fdopen(fd, mode) : nullptr;
}

// What is in the file's buffer to be read, and the room in it, where they are
// known: stdio's own getc_unlocked() and putc_unlocked() take bytes from there, and
// with a few bytes at a time calling it would cost more than all else.
#if defined(__GLIBC__) && !defined(__UCLIBC__)
bool takeBuffered(FILE* file, void* to, std::size_t nbytes) {
    if (nbytes > static_cast<std::size_t>(file->_IO_read_end - file->_IO_read_ptr)) return false;
    qzRawMove(to, file->_IO_read_ptr, nbytes);
    file->_IO_read_ptr += nbytes;
    return true;
}

bool putBuffered(FILE* file, const void* from, std::size_t nbytes) {
    if (file->_IO_write_ptr >= file->_IO_write_end ||
        nbytes > static_cast<std::size_t>(file->_IO_write_end - file->_IO_write_ptr)) {
        return false;
    }
    qzRawMove(file->_IO_write_ptr, from, nbytes);
    file->_IO_write_ptr += nbytes;
    return true;
}
#else
bool takeBuffered(FILE*, void*, std::size_t) { return false; }
bool putBuffered(FILE*, const void*, std::size_t) { return false; }
#endif

// The library is for one thread, so no call locks the file.
template <class T> unsigned char get(FILE* file, T* to, unsigned n) {
    if (!file) return 0;
    return takeBuffered(file, to, sizeof(T) * std::size_t(n)) ||
           fread_unlocked(to, sizeof(T), n, file) == n;
}

template <class T> unsigned char put(FILE* file, const T* from, unsigned n) {
    if (!file) return 0;
    return putBuffered(file, from, sizeof(T) * std::size_t(n)) ||
           fwrite_unlocked(from, sizeof(T), n, file) == n;
}

} // namespace

qzStdioStream::qzStdioStream(const char* path, qzStreamType type, unsigned mode)
    : file(nullptr), type(type), error(1), eof(0) {
    const int fd = openFile(path, type, mode);
    if (fd < 0) return;
    file = wrap(fd, type);
    if (!file) close(fd);
    error = !file;
}

qzStdioStream::qzStdioStream(int fd, qzStreamType type)
    : file(wrap(fd, type)), type(type), error(!file), eof(0) {}

qzStdioStream::qzStdioStream(FILE* file, qzStreamType type)
    : file(file), type(type), error(!file), eof(0) {}

qzStdioStream::~qzStdioStream() {
    if (!file) return;
    std::fflush(file);
    std::fclose(file);
}

unsigned char qzStdioStream::hasError() { return error; }

unsigned char qzStdioStream::atEOF() { return eof; }

unsigned char qzStdioStream::isReading() { return type == qzST_Read || type == qzST_ReadWrite; }

unsigned char qzStdioStream::isWriting() { return type == qzST_Write || type == qzST_ReadWrite; }

qzStream::qzStreamType qzStdioStream::getType() { return type; }

unsigned char qzStdioStream::getBytes(char* to, unsigned n) { return get(file, to, n); }

unsigned char qzStdioStream::getShorts(short* to, unsigned n) { return get(file, to, n); }

unsigned char qzStdioStream::getInts(int* to, unsigned n) { return get(file, to, n); }

unsigned char qzStdioStream::getLongs(long* to, unsigned n) {
    if constexpr (sizeof(long) == sizeof(int)) {
        return get(file, to, n);
    } else {
        for (unsigned i = 0; i < n; ++i) {
            int value;
            if (!get(file, &value, 1)) return 0;
            to[i] = value;
        }
        return file != nullptr;
    }
}

unsigned char qzStdioStream::getFloats(float* to, unsigned n) { return get(file, to, n); }

unsigned char qzStdioStream::getDoubles(double* to, unsigned n) { return get(file, to, n); }

unsigned char qzStdioStream::putBytes(const char* from, unsigned n) { return put(file, from, n); }

unsigned char qzStdioStream::putShorts(const short* from, unsigned n) { return put(file, from, n); }

unsigned char qzStdioStream::putInts(const int* from, unsigned n) { return put(file, from, n); }

unsigned char qzStdioStream::putLongs(const long* from, unsigned n) {
    if constexpr (sizeof(long) == sizeof(int)) {
        return put(file, from, n);
    } else {
        for (unsigned i = 0; i < n; ++i) {
            const int value = static_cast<int>(from[i]);
            if (value != from[i] || !put(file, &value, 1)) return 0;
        }
        return file != nullptr;
    }
}

unsigned char qzStdioStream::putFloats(const float* from, unsigned n) { return put(file, from, n); }

unsigned char qzStdioStream::putDoubles(const double* from, unsigned n) {
    return put(file, from, n);
}
