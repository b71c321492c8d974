// qzTranscriber: the one object through which a class writes and reads itself.
//
// A class calls the same sequence of xdr operations in both directions; the
// transcriber copies the values out to its stream or fills them in from it.
// isReading() is for direction-specific work, such as sizing storage from a
// count that was just read.
//
// Units: the count n is a number of elements.
// Errors: every xdr returns true on success. Pass false up at once: what has
//     failed may have gone while the reader still means to fill it in.
// Ownership: what a pointer form allocates on reading comes from malloc and
// belongs to the object whose pointer it was.
#ifndef QZ_XDR_TRANSCRIBER_H
#define QZ_XDR_TRANSCRIBER_H

#include "util/RCObj.h"

class qzStr;
class qzStream;
class qzTypeObj;
class qzVoidPtrDict;
class qzXDRObj;

class QZ_EXPORT qzTranscriber : public qzRCObj {
  public:
    // slots 1-2
    ~qzTranscriber() override; // releases the stream
    // Forgets all objects seen so far.
    virtual void reset() = 0;

    // slots 3-11: n values in place
    virtual unsigned char xdr(char* values, unsigned n) = 0;
    virtual unsigned char xdr(unsigned char* values, unsigned n) = 0;
    virtual unsigned char xdr(short* values, unsigned n) = 0;
    virtual unsigned char xdr(unsigned short* values, unsigned n) = 0;
    virtual unsigned char xdr(long* values, unsigned n) = 0;
    virtual unsigned char xdr(unsigned long* values, unsigned n) = 0;
    virtual unsigned char xdr(float* values, unsigned n) = 0;
    virtual unsigned char xdr(double* values, unsigned n) = 0;
    virtual unsigned char xdr(qzStr* values, unsigned n) = 0;

    // slots 12-19: a pointer member to an array of n elements that the object
    // owns. On reading the array is allocated and the pointer set, which may
    // happen only once the whole graph has been read.
    virtual unsigned char xdr(char** array, unsigned n) = 0;
    virtual unsigned char xdr(unsigned char** array, unsigned n) = 0;
    virtual unsigned char xdr(short** array, unsigned n) = 0;
    virtual unsigned char xdr(unsigned short** array, unsigned n) = 0;
    virtual unsigned char xdr(long** array, unsigned n) = 0;
    virtual unsigned char xdr(unsigned long** array, unsigned n) = 0;
    virtual unsigned char xdr(float** array, unsigned n) = 0;
    virtual unsigned char xdr(double** array, unsigned n) = 0;

    // slots 20-21: a pointer member to NUL-terminated text
    virtual unsigned char xdr(char** text) = 0;
    virtual unsigned char xdr(unsigned char** text) = 0;

    // slot 22: a pointer member to a serializable object. `member` is the
    // address of the pointer; `object` tells the type through getTypeObj().
    virtual unsigned char xdr(void* member, qzXDRObj* object, qzTypeObj& type, qzXDRObj* owner,
                              void* context) = 0;
    // slot 23: a base part of `whole` that lies at an address of its own; with
    // both addresses equal there is nothing to do.
    virtual unsigned char xdr(qzTypeObj& type, void* whole, void* part) = 0;

    // slots 24-25: one whole graph; readObject returns its root or null
    virtual void* readObject(qzTypeObj& type) = 0;
    virtual unsigned char writeObject(void* root, qzXDRObj* object) = 0;

    // slot 26
    virtual const char* className() const = 0;

    // slots 27-30: ints travel as longs, one call with the same count. Where a
    // long is wider than an int, arrays are copied through longs, and the
    // pointer forms fail unless the transcriber overrides them: only it knows
    // when the array is moved.
    virtual unsigned char xdr(int* values, unsigned n);
    virtual unsigned char xdr(unsigned* values, unsigned n);
    virtual unsigned char xdr(int** array, unsigned n);
    virtual unsigned char xdr(unsigned** array, unsigned n);

    // Makes a writer or a reader for a stream.
    using WriterFactory = qzTranscriber* (*)(qzStream* stream);
    // Is given the two test values and the float format of the stream's header.
    using ReaderFactory = qzTranscriber* (*)(qzStream* stream, short testShort, long testLong,
                                             const char* floatFormat);

    // The factory. getWriter() makes a writer and puts the stream's header;
    // getReader() reads a header and makes the reader that is registered under
    // the name in it. Both give null when the stream fails or nobody can be made;
    // a name that is not registered is fatal. The caller owns the transcriber,
    // and deletes it. The transcriber holds a reference on the stream: without one
    // of the caller's, the stream goes with it, also with a writer that fails.
    static qzTranscriber* getWriter(qzStream* stream);
    static qzTranscriber* getReader(qzStream* stream);
    // Registers a reader under its writer's class name; a later one replaces it.
    static void addTranscriber(const char* name, ReaderFactory factory);
    // What getWriter() makes; null is ignored.
    static void changeDefaultWriter(WriterFactory factory);
    static void resetToDefaultWriter();
    static qzTranscriber* makeDefaultWriter(qzStream* stream); // a qzBinaryWriter

    unsigned char isReading() const { return reading; }
    unsigned char isWriting() const { return !reading; }

  protected:
    qzTranscriber(unsigned char reading = 0);
    qzTranscriber(const qzTranscriber&) = delete;
    qzTranscriber& operator=(const qzTranscriber&) = delete;

    // Releases the old stream and takes a reference on the new; null is fine.
    void setStream(qzStream* newStream);

    unsigned char reading; // 1 for a reader, 0 for a writer
    qzStream* stream;      // one reference held; null at construction

  private:
    static qzVoidPtrDict* readers; // made by the first registration
    static WriterFactory makeWriter;
};

static_assert(sizeof(void*) != 4 || sizeof(qzTranscriber) == 16,
              "count, direction and stream after the virtual table");

#endif
