// qzBinaryTranscriber: what the binary writer and reader share: the data buffer
// of the record at hand and its header. Each has an object table of its own:
// qzObjectIds, from addresses to ids, and qzBinaryReader's from ids to addresses.
#ifndef QZ_XDR_BINARYTRANSCRIBER_H
#define QZ_XDR_BINARYTRANSCRIBER_H

#include "xdr/BinaryRecord.h"
#include "xdr/Transcriber.h"
#include "xdr/WordTable.h"

class QZ_EXPORT qzBinaryTranscriber : public virtual qzTranscriber {
  public:
    ~qzBinaryTranscriber() override;

  protected:
    // The record that is being put together or taken apart. A field keeps its
    // value from the record that last had it.
    struct Record {
        unsigned kind;    // of qzBinaryRecord::Kind
        unsigned id;      // of the object, array or part
        unsigned typeId;  // of the object's type, or the type defined
        unsigned version; // of the object, or of the type last defined
        unsigned length;  // of an array in the stream, bytes
        const char* name; // of the type being defined
    };
    // The fields of a kind of record in the order in which they are in a stream.
    struct Fields {
        unsigned count;
        unsigned Record::*at[3];
    };
    static const Fields& fieldsOf(unsigned kind) {
        if (kind > qzBinaryRecord::LastUsedKind) noSuchRecord();
        return fieldsOfKinds[kind];
    }

    static const unsigned headerSize = 20; // at most: a tag, a length of 4 and fields of 12

    qzBinaryTranscriber();

    static unsigned long addressKey(const void* address) {
        return reinterpret_cast<unsigned long>(address);
    }

    [[noreturn]] static void noSuchRecord();
    static const Fields fieldsOfKinds[qzBinaryRecord::LastUsedKind + 1];

    char space[headerSize + qzBinaryRecord::maxData]; // a header, right before the data buffer
    char* const buffer;
    char* cursor;      // next byte to write or read
    unsigned capacity; // of the buffer
    unsigned count;    // data bytes of the current record in the buffer
    Record record;
    qzWordTable parts; // of the object at hand, by address
};

#endif
