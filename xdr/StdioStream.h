// qzStdioStream: a stream over a stdio FILE.
//
// Ownership: the FILE is the stream's from construction on, a descriptor that it
//     was made from included; the destructor flushes and closes it.
// Errors: nothing is raised or printed. A stream that could not be opened says
//     so in hasError(), and each of its operations fails. A failed read leaves
//     what did arrive in the buffer.
// Trusted: a stream for reading and writing changes direction only at a place
//     where stdio allows it; position the FILE in between.
//
// Deliberate: a file opened for writing is not truncated: new data overwrite it
// from the start and older bytes beyond stay. Callers update records in place.
// Pinned by qzStdioStream.OpeningForWritingKeepsWhatIsThere.
//
// Deliberate: atEOF() is false and hasError() as it was at construction, also
// after a read has failed; callers go by the result of each operation. Pinned by
// qzStdioStream.FlagsTellOfOpeningOnly.
#ifndef QZ_XDR_STDIOSTREAM_H
#define QZ_XDR_STDIOSTREAM_H

#include <cstdio>

#include "xdr/Stream.h"

class QZ_EXPORT qzStdioStream : public qzStream {
  public:
    // A file that is opened for more than reading is created with these
    // permissions when it cannot be opened as it is.
    qzStdioStream(const char* path, qzStreamType type, unsigned mode = 0666);
    qzStdioStream(int fd, qzStreamType type);
    qzStdioStream(FILE* file, qzStreamType type);
    qzStdioStream(const qzStdioStream&) = delete;
    qzStdioStream& operator=(const qzStdioStream&) = delete;

    // slots 1-18
    ~qzStdioStream() override;
    unsigned char hasError() override;
    unsigned char atEOF() override;
    unsigned char isReading() override;
    unsigned char isWriting() override;
    qzStreamType getType() override;
    unsigned char getBytes(char* to, unsigned n) override;
    unsigned char getShorts(short* to, unsigned n) override;
    unsigned char getInts(int* to, unsigned n) override;
    unsigned char getLongs(long* to, unsigned n) override;
    unsigned char getFloats(float* to, unsigned n) override;
    unsigned char getDoubles(double* to, unsigned n) override;
    unsigned char putBytes(const char* from, unsigned n) override;
    unsigned char putShorts(const short* from, unsigned n) override;
    unsigned char putInts(const int* from, unsigned n) override;
    // Where a long has 8 bytes, one that does not fit the stream's 4 fails.
    unsigned char putLongs(const long* from, unsigned n) override;
    unsigned char putFloats(const float* from, unsigned n) override;
    unsigned char putDoubles(const double* from, unsigned n) override;

  protected:
    FILE* file; // null when opening failed
    qzStreamType type;
    unsigned char error;
    unsigned char eof;
};

static_assert(sizeof(void*) != 4 || sizeof(qzStdioStream) == 20, "four fields after the count");

#endif
