// qzBinaryGraphWriter: writes graphs that can be read back whatever they hold.
//
// The standard writer puts fewer bytes behind a reference than readers consume,
// and refers to bodies that are still to come as if they were there. Streams of
// values come back from it; graphs of object pointers do not. This writer puts
// what every reader understands:
//
// - 8 bytes of fields behind each reference and part, the last 4 being 0;
// - a type's definition directly before an object's body and nowhere else;
// - the object's own version with its body;
// - while a body is still to come, further pointers to it as first ones, so that
//   each is filled in once it is there;
// - a null array pointer as a reference to id 0.
//
// Shared objects and arrays stay shared, cycles close, base parts and nulls come
// back, and chains of any length are written and read without recursion.
//
// The class name is inherited: a stream's header names the reader, and all readers
// of the standard writer's streams read these.
//
// Install it with qzTranscriber::changeDefaultWriter(makeGraphWriter).
//
// Errors: as the standard writer's; also false once 2,147,483,647 ids are taken.
#ifndef QZ_XDR_BINARYGRAPHWRITER_H
#define QZ_XDR_BINARYGRAPHWRITER_H

#include "xdr/BinaryWriter.h"

class QZ_EXPORT qzBinaryGraphWriter : public qzBinaryWriter {
  public:
    explicit qzBinaryGraphWriter(qzStream* stream);
    ~qzBinaryGraphWriter() override;
};

QZ_EXPORT qzTranscriber* makeGraphWriter(qzStream* stream);

#endif
