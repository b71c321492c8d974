// The factory on qzTranscriber.
//
// header := name NUL "ieee" NUL short(0x1122) long(0x33445566)
//
// The name is the writer's class name; the short and the long are in the byte
// order of all that follow, and tell it.
#include <cstring>

#include "util/Fatal.h"
#include "util/StackBuffer.h"
#include "util/VoidPtrDict.h"
#include "xdr/BinaryWriter.h"
#include "xdr/Stream.h"
#include "xdr/Transcriber.h"

qzVoidPtrDict* qzTranscriber::readers = nullptr;
qzTranscriber::WriterFactory qzTranscriber::makeWriter = qzTranscriber::makeDefaultWriter;

namespace {

const short testShort = 0x1122;
const long testLong = 0x33445566;
const char floatFormat[] = "ieee";

bool putText(qzStream& stream, const char* text) {
    return stream.putBytes(text, static_cast<unsigned>(std::strlen(text)) + 1);
}

bool putHeader(qzStream& stream, const char* name) {
    return putText(stream, name) && putText(stream, floatFormat) &&
           stream.putShorts(&testShort, 1) && stream.putLongs(&testLong, 1);
}

// A text with its NUL. The limit keeps a stream without one from being read to its
// end.
bool getText(qzStream& stream, qzStackBuffer& text) {
    char c;
    do {
        if (text.length() == qzBinaryRecord::maxName || !stream.getBytes(&c, 1)) return false;
        text.addc(c);
    } while (c);
    return true;
}

} // namespace

void qzTranscriber::addTranscriber(const char* name, ReaderFactory factory) {
    if (!readers) readers = new qzVoidPtrDict(0);
    (*readers)[name] = reinterpret_cast<void*>(factory);
}

void qzTranscriber::changeDefaultWriter(WriterFactory factory) {
    if (factory) makeWriter = factory;
}

void qzTranscriber::resetToDefaultWriter() { makeWriter = makeDefaultWriter; }

qzTranscriber* qzTranscriber::makeDefaultWriter(qzStream* stream) {
    return new qzBinaryWriter(stream);
}

qzTranscriber* qzTranscriber::getWriter(qzStream* stream) {
    qzTranscriber* writer = makeWriter(stream);
    if (!writer) return nullptr;
    if (putHeader(*stream, writer->className())) return writer;
    delete writer;
    return nullptr;
}

qzTranscriber* qzTranscriber::getReader(qzStream* stream) {
    if (!readers) return nullptr;
    qzStackBuffer name;
    qzStackBuffer format;
    short readShort;
    long readLong;
    if (!getText(*stream, name) || !getText(*stream, format)) return nullptr;
    if (!stream->getShorts(&readShort, 1) || !stream->getLongs(&readLong, 1)) return nullptr;
    void** factory = readers->find(name.data());
    if (!factory) qzFatal("Unknown transcriber type \"%s\"", name.data());
    return reinterpret_cast<ReaderFactory>(*factory)(stream, readShort, readLong, format.data());
}
