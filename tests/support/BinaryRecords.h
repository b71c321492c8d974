// The octets of records in the binary object format.
#ifndef QZ_TESTS_SUPPORT_BINARYRECORDS_H
#define QZ_TESTS_SUPPORT_BINARYRECORDS_H

#include "support/RecordingTranscriber.h"

// The tag's kind with the length of the data, fields, data.
inline std::string record(unsigned kind, const std::string& data, const std::string& fields = "") {
    const unsigned n = static_cast<unsigned>(data.size());
    std::string length = n < 256 ? std::string(1, char(n)) : half(static_cast<unsigned short>(n));
    if (n == 0) length.clear();
    return char(kind | length.size() << 6) + length + fields + data;
}
inline std::string definition(unsigned id, const char* name) {
    return record(2, "", word(id)) + std::string(name, std::strlen(name) + 1);
}

#endif
