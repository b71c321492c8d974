// qzStream: the byte sink or source under a transcriber.
//
// Reference-counted: a transcriber holds a reference on its stream.
//
// Units: counts are numbers of elements. Elements go in and out as the host's
// memory image; byte order is the transcriber's business. In a stream a short
// has 2 bytes, int, long and float have 4 and a double has 8.
// Errors: every get and put returns true when the whole count was moved.
#ifndef QZ_XDR_STREAM_H
#define QZ_XDR_STREAM_H

#include "util/RCObj.h"

class QZ_EXPORT qzStream : public qzRCObj {
  public:
    enum qzStreamType { qzST_Read = 0, qzST_Write = 1, qzST_ReadWrite = 2 };

    // slots 1-18
    ~qzStream() override;
    virtual unsigned char hasError() = 0;
    virtual unsigned char atEOF() = 0;
    virtual unsigned char isReading() = 0;
    virtual unsigned char isWriting() = 0;
    virtual qzStreamType getType() = 0;
    virtual unsigned char getBytes(char* to, unsigned n) = 0;
    virtual unsigned char getShorts(short* to, unsigned n) = 0;
    virtual unsigned char getInts(int* to, unsigned n) = 0;
    virtual unsigned char getLongs(long* to, unsigned n) = 0;
    virtual unsigned char getFloats(float* to, unsigned n) = 0;
    virtual unsigned char getDoubles(double* to, unsigned n) = 0;
    virtual unsigned char putBytes(const char* from, unsigned n) = 0;
    virtual unsigned char putShorts(const short* from, unsigned n) = 0;
    virtual unsigned char putInts(const int* from, unsigned n) = 0;
    virtual unsigned char putLongs(const long* from, unsigned n) = 0;
    virtual unsigned char putFloats(const float* from, unsigned n) = 0;
    virtual unsigned char putDoubles(const double* from, unsigned n) = 0;
};

#endif
