#include "xdr/BinaryTranscriber.h"

#include "util/Fatal.h"

qzBinaryTranscriber::qzBinaryTranscriber()
    : buffer(space + headerSize), cursor(buffer), capacity(qzBinaryRecord::maxData),
      count(0), record{} {}

qzBinaryTranscriber::~qzBinaryTranscriber() = default;

const qzBinaryTranscriber::Fields qzBinaryTranscriber::fieldsOfKinds[] = {
    {0, {}},                                               // continuation
    {0, {}},                                               // null pointer
    {1, {&Record::typeId}},                                // type definition
    {2, {&Record::id, &Record::length}},                   // new array
    {1, {&Record::id}},                                    // known array
    {2, {&Record::id, &Record::length}},                   // chars
    {2, {&Record::id, &Record::length}},                   // shorts
    {2, {&Record::id, &Record::length}},                   // longs
    {2, {&Record::id, &Record::length}},                   // floats
    {2, {&Record::id, &Record::length}},                   // doubles
    {3, {&Record::id, &Record::typeId, &Record::version}}, // object
    {1, {&Record::id}},                                    // new object
    {1, {&Record::id}},                                    // known object
    {1, {&Record::id}},                                    // new part
    {1, {&Record::id}},                                    // known part
};

void qzBinaryTranscriber::noSuchRecord() { qzFatal("Whoops!"); }
