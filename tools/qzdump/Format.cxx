#include "tools/qzdump/Format.h"

#include <algorithm>

namespace qzdump {

namespace {

const char endsWithin[] = "the stream ends within ";

// Takes values off the front of the bytes. Past the end everything is 0 or
// empty, and ranOut() tells.
class Cursor {
  public:
    explicit Cursor(std::string_view bytes) : bytes(bytes) {}

    std::string_view take(std::size_t n) {
        if (n > bytes.size() - position) {
            missing = true;
            return {};
        }
        position += n;
        return bytes.substr(position - n, n);
    }
    // Least significant byte first.
    std::uint32_t number(unsigned width) {
        const std::string_view from = take(width);
        std::uint32_t value = 0;
        for (std::size_t i = from.size(); i-- > 0;)
            value = value << 8 | static_cast<unsigned char>(from[i]);
        return value;
    }
    // Without its NUL, which is among the next maxName bytes.
    std::string_view text() {
        const std::string_view ahead = bytes.substr(position, maxName);
        const std::size_t length = ahead.find('\0');
        if (length == ahead.npos) {
            tooLong = ahead.size() == maxName;
            missing = !tooLong;
            return {};
        }
        return take(length + 1).substr(0, length);
    }

    bool ranOut() const { return missing; }
    bool nameTooLong() const { return tooLong; }
    std::size_t passed() const { return position; }

  private:
    std::string_view bytes;
    std::size_t position = 0;
    bool missing = false;
    bool tooLong = false;
};

std::string nameTooLong() {
    return "a name does not end within " + std::to_string(maxName) + " bytes";
}

unsigned fieldCount(unsigned kind, FieldForm form) {
    if (kind == TypeDefinition) return 1;
    if (kind == NewArray || isArrayBody(kind)) return 2;
    if (kind == ObjectBody) return 3;
    if (isReference(kind)) return form == FieldForm::OneWord ? 1 : 2;
    return 0;
}

// A test value counts its bytes down from the least significant one, 0x22 or
// 0x66, in steps of 0x11: each of its bytes tells the weight of its place.
template <std::size_t N>
std::uint32_t valueAt(const char* bytes, const std::array<unsigned char, N>& test) {
    const unsigned leastSignificant = N == 2 ? 0x22 : 0x66;
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < N; ++i) {
        const unsigned shift = (leastSignificant - test[i]) / 0x11 * 8;
        value |= std::uint32_t(static_cast<unsigned char>(bytes[i])) << shift;
    }
    return value;
}

template <std::size_t N> struct NamedOrder {
    std::array<unsigned char, N> test;
    const char* name;
};

const NamedOrder<2> shortOrders[] = {
    {{0x22, 0x11}, "little-endian"},
    {{0x11, 0x22}, "big-endian"},
};
const NamedOrder<4> longOrders[] = {
    {{0x66, 0x55, 0x44, 0x33}, "little-endian"},
    {{0x33, 0x44, 0x55, 0x66}, "big-endian"},
    {{0x55, 0x66, 0x33, 0x44}, "big-endian halves, low half first"},
    {{0x44, 0x33, 0x66, 0x55}, "little-endian halves, high half first"},
};

template <std::size_t N, std::size_t Count>
const char* nameOf(const std::array<unsigned char, N>& test, const NamedOrder<N> (&orders)[Count]) {
    for (const NamedOrder<N>& order : orders)
        if (order.test == test) return order.name;
    return nullptr;
}

// No writer makes a continuation without data or a second word other than 0.
bool isPlausible(const Record& record) {
    return record.spare == 0 && (record.kind != Continuation || !record.data.empty());
}

// The length of the records that make sense in the form.
std::size_t plausibleLength(std::string_view bytes, FieldForm form) {
    std::size_t length = 0;
    Record record;
    while (length < bytes.size() && parseRecord(bytes.substr(length), form, record).empty() &&
           isPlausible(record))
        length += record.size;
    return length;
}

} // namespace

const char* kindName(unsigned kind) {
    static const char* const names[] = {
        "continuation", "null pointer", "type definition", "new array", "known array",
        "chars",        "shorts",       "longs",           "floats",    "doubles",
        "object",       "new object",   "known object",    "new part",  "known part"};
    return names[kind];
}

const char* ByteOrder::shortName() const { return nameOf(testShort, shortOrders); }
const char* ByteOrder::longName() const { return nameOf(testLong, longOrders); }

std::int16_t ByteOrder::shortAt(const char* bytes) const {
    return static_cast<std::int16_t>(valueAt(bytes, testShort));
}
std::int32_t ByteOrder::longAt(const char* bytes) const {
    return static_cast<std::int32_t>(valueAt(bytes, testLong));
}

std::string parseHeader(std::string_view bytes, Header& header) {
    Cursor cursor(bytes);
    header.writer = cursor.text();
    header.floatFormat = cursor.text();
    const std::string_view testShort = cursor.take(2);
    const std::string_view testLong = cursor.take(4);
    if (cursor.nameTooLong()) return nameTooLong();
    if (cursor.ranOut()) return endsWithin + std::string("its header");
    std::copy(testShort.begin(), testShort.end(), header.order.testShort.begin());
    std::copy(testLong.begin(), testLong.end(), header.order.testLong.begin());
    header.size = cursor.passed();
    return "";
}

std::string parseRecord(std::string_view bytes, FieldForm form, Record& record) {
    static const unsigned lengthWidths[] = {0, 1, 2, 4};
    Cursor cursor(bytes);
    const std::uint32_t tag = cursor.number(1);
    const std::uint32_t dataLength = cursor.number(lengthWidths[tag >> 6]);
    record = {};
    record.kind = tag & kindBits;
    if (record.kind > LastUsedKind) return "no record has kind " + std::to_string(record.kind);
    if (dataLength > maxData) {
        return "a record claims " + std::to_string(dataLength) + " bytes of data and can have " +
               std::to_string(maxData);
    }
    std::uint32_t fields[3] = {};
    for (unsigned i = 0; i < fieldCount(record.kind, form); ++i)
        fields[i] = cursor.number(4);
    record.id = fields[0];
    if (record.kind == ObjectBody) {
        record.typeId = fields[1];
        record.version = fields[2];
    } else if (isReference(record.kind)) {
        record.spare = fields[1];
    } else {
        record.length = fields[1];
    }
    if (record.kind == TypeDefinition) record.name = cursor.text();
    record.data = cursor.take(dataLength);
    if (cursor.nameTooLong()) return nameTooLong();
    if (cursor.ranOut())
        return endsWithin + std::string("a record of kind ") + kindName(record.kind);
    record.size = cursor.passed();
    return "";
}

// In the wrong form a record's fields or data are taken for records, which hardly
// ever goes well for long.
FieldForm guessForm(std::string_view bytes) {
    return plausibleLength(bytes, FieldForm::TwoWords) > plausibleLength(bytes, FieldForm::OneWord)
               ? FieldForm::TwoWords
               : FieldForm::OneWord;
}

} // namespace qzdump
