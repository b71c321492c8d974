#include "xdr/BinaryGraphWriter.h"

qzBinaryGraphWriter::qzBinaryGraphWriter(qzStream* newStream) : qzBinaryWriter(newStream, Graph) {}

qzBinaryGraphWriter::~qzBinaryGraphWriter() = default;

qzTranscriber* makeGraphWriter(qzStream* stream) { return new qzBinaryGraphWriter(stream); }
