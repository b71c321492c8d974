// The binary object format as octets: the header and the records, taken apart
// but not yet understood. docs/binary-format.md has the grammar.
#ifndef QZ_TOOLS_QZDUMP_FORMAT_H
#define QZ_TOOLS_QZDUMP_FORMAT_H

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "xdr/BinaryRecord.h"

namespace qzdump {

using namespace qzBinaryRecord;

const char* kindName(unsigned kind);

// The fields of references: the id alone, or the id and a word 0.
enum class FieldForm { OneWord, TwoWords };

struct Record {
    unsigned kind = 0;
    std::uint32_t id = 0;
    std::uint32_t length = 0;  // new arrays and array bodies
    std::uint32_t typeId = 0;  // object bodies
    std::uint32_t version = 0; // object bodies
    std::uint32_t spare = 0;   // the second word, where there are two
    std::string_view name;     // type definitions
    std::string_view data;
    std::size_t size = 0; // of the whole record in the stream
};

const std::size_t maxRecord = 1 + 4 + 3 * 4 + maxName + maxData;
const std::size_t maxHeader = 2 * maxName + 2 + 4;

// The order of the bytes of shorts and longs, as the header's test values show
// it: the bytes of 0x1122 and of 0x33445566.
struct ByteOrder {
    std::array<unsigned char, 2> testShort = {0x22, 0x11};
    std::array<unsigned char, 4> testLong = {0x66, 0x55, 0x44, 0x33};

    // Null for an order that no reader knows.
    const char* shortName() const;
    const char* longName() const;
    // Of the first 2 (4) of the bytes, in an order that has a name.
    std::int16_t shortAt(const char* bytes) const;
    std::int32_t longAt(const char* bytes) const;
};

struct Header {
    std::string_view writer;
    std::string_view floatFormat;
    ByteOrder order;
    std::size_t size = 0;
};

// Both take the header (record) at the front of the bytes apart and return why
// that cannot be done, or an empty text. Bytes that run out count as the end of
// the stream: give maxHeader (maxRecord) where there are as many.
std::string parseHeader(std::string_view bytes, Header& header);
std::string parseRecord(std::string_view bytes, FieldForm form, Record& record);

// The form in which more of the records ahead make sense.
FieldForm guessForm(std::string_view bytes);

} // namespace qzdump

#endif
