// qzBinaryWriter: writes graphs of objects in the binary object format.
//
// Every object, every primitive array reached through a pointer and every type
// is written once and given an id; later meetings refer to it by id. The format
// is written front to back, without seeking.
//
// Objects of one writer share their ids until reset(): what has been written is
// referred to, not written again. Call it before a graph that holds anything
// written before which has been changed, or destroyed and replaced, since. What
// an array pointer points to must live until writeObject() returns. Members travel as the
// data of the record that was opened last, 512 bytes at most; what exceeds them
// goes to continuation records.
//
// Ownership: holds a reference on its stream. Destruction does not flush: the
//     last operation is a writeObject(), which does.
// Errors: every operation is false when the stream refuses data, and where a
//     long does not fit the stream's four bytes.
#ifndef QZ_XDR_BINARYWRITER_H
#define QZ_XDR_BINARYWRITER_H

#include <deque>
#include <vector>

#include "xdr/BinaryTranscriber.h"
#include "xdr/BinaryWriterItem.h"
#include "xdr/ObjectIds.h"

class QZ_EXPORT qzBinaryWriter : public qzBinaryTranscriber {
  public:
    // Writes nothing; getWriter() puts the header.
    explicit qzBinaryWriter(qzStream* stream);
    ~qzBinaryWriter() override;

    // Forgets all objects. Deliberate: ids go on rising, so that no id of a
    // stream ever stands for two things. Pinned by
    // qzBinaryWriter.IdsKeepRisingAcrossResets.
    void reset() override;

    unsigned char xdr(char* values, unsigned n) override;
    unsigned char xdr(unsigned char* values, unsigned n) override;
    unsigned char xdr(short* values, unsigned n) override;
    unsigned char xdr(unsigned short* values, unsigned n) override;
    unsigned char xdr(long* values, unsigned n) override;
    unsigned char xdr(unsigned long* values, unsigned n) override;
    unsigned char xdr(float* values, unsigned n) override;
    unsigned char xdr(double* values, unsigned n) override;
    unsigned char xdr(qzStr* values, unsigned n) override;

    unsigned char xdr(char** array, unsigned n) override;
    unsigned char xdr(unsigned char** array, unsigned n) override;
    unsigned char xdr(short** array, unsigned n) override;
    unsigned char xdr(unsigned short** array, unsigned n) override;
    unsigned char xdr(long** array, unsigned n) override;
    unsigned char xdr(unsigned long** array, unsigned n) override;
    unsigned char xdr(float** array, unsigned n) override;
    unsigned char xdr(double** array, unsigned n) override;
    unsigned char xdr(char** text) override;
    unsigned char xdr(unsigned char** text) override;

    unsigned char xdr(void* member, qzXDRObj* object, qzTypeObj& type, qzXDRObj* owner,
                      void* context) override;
    unsigned char xdr(qzTypeObj& type, void* whole, void* part) override;

    void* readObject(qzTypeObj& type) override; // fatal: it is a writer
    unsigned char writeObject(void* root, qzXDRObj* object) override;
    const char* className() const override;

    using qzTranscriber::xdr;
    unsigned char xdr(int** array, unsigned n) override;
    unsigned char xdr(unsigned** array, unsigned n) override;

  protected:
    // How references are put; what each is for is in xdr/BinaryGraphWriter.h.
    enum Form : unsigned char { Standard, Graph };
    qzBinaryWriter(qzStream* stream, Form form);

    // Puts out the record at hand.
    unsigned char flush();
    unsigned char writeBytes(const void* bytes, unsigned n);
    unsigned char writeNull();
    // The type's id; 0 when the stream refused its definition.
    unsigned writeType(qzTypeObj& type);
    // n elements of one size in memory and in the stream.
    unsigned char writeArray(void* array, unsigned n, qzBinaryOTTag tag, unsigned memorySize,
                             unsigned streamSize);
    unsigned char writeItem(const qzBinaryWriterItem& item);

    const Form form;
    qzObjectIds ids;
    std::deque<qzBinaryWriterItem> work; // bodies to be written, used as a stack

  private:
    // What the table has of an address, which it is given if it is new. isOut: it
    // need not be promised, in the graph form since its body has begun.
    struct Meeting {
        unsigned id;
        bool isNew;
        bool isOut;
    };
    Meeting meet(void* address);
    void pushRoot(void* root, qzTypeObj& type);
    bool hasBegun(unsigned id) const;
    void markBegun(unsigned id);
    bool isPartOut(const void* part, bool isKnown) const;

    char* putHeaderBefore(char* data, unsigned dataLength) const;
    unsigned char putRecords(const char* bytes, std::size_t nbytes);
    unsigned char writeValues(const void* values, unsigned n, unsigned size);
    unsigned char writeObjectItem(const qzBinaryWriterItem& item);
    unsigned char writeArrayItem(const qzBinaryWriterItem& item);
    unsigned char writeFullRecords(const char* from, unsigned n);
    template <class Long> unsigned char writeLongs(const Long* values, unsigned n);

    // In the graph form, a bit for each id from the oldest on: whether the body has.
    std::vector<unsigned> begun;
};

#endif
