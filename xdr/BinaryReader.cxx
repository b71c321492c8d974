// The reader of the binary object format; the grammar is in BinaryWriter.cxx.
//
// Invariants that any bytes leave true:
// (1) An id stands for one thing at a time, and its Known says what that is. An
//     address never leaves it as anything else.
// (2) An array that a member gets has the bytes that the member was promised, and
//     a NUL behind them.
// (3) What a string frees is in no other member.
// (4) Memory follows the data that came, not the lengths that were claimed, but
//     for what mayClaim() grants.
#include "xdr/BinaryReader.h"

#include <climits>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

#include "util/Fatal.h"
#include "util/StackBuffer.h"
#include "util/Str.h"
#include "util/detail/RawMemory.h"
#include "xdr/BinaryOTTag.h"
#include "xdr/Stream.h"
#include "xdr/TypeObj.h"

namespace {

const unsigned kindMask = 63;

unsigned lengthBytes(unsigned lengthClass) { return lengthClass == 3 ? 4 : lengthClass; }

// Deliberate: pointers and parts are followed by 8 bytes of fields, of which the
// first 4 count, though the standard writer puts only these. The format's
// readers have always consumed 8, and a writer that puts 8 is read by all of
// them. Pinned by qzBinaryReader.PointersConsumeEightBytesOfFields.
unsigned fieldBytes(unsigned kind) {
    static const unsigned char bytes[] = {0, 0, 4, 8, 8, 8, 8, 8, 8, 8, 12, 8, 8, 8, 8};
    return kind < sizeof bytes ? bytes[kind] : 0;
}

unsigned leastFirst(const char* from, unsigned nbytes) {
    unsigned value = 0;
    while (nbytes-- > 0)
        value = value << 8 | static_cast<unsigned char>(from[nbytes]);
    return value;
}

void setPointer(void* member, void* address) { std::memcpy(member, &address, sizeof address); }

// What an array's element takes in a stream.
unsigned elementBytes(unsigned tag) {
    switch (tag) {
    case qzBOT_Chars:
        return 1;
    case qzBOT_Shorts:
        return 2;
    case qzBOT_Doubles:
        return 8;
    default:
        return 4;
    }
}

} // namespace

struct qzBinaryReader::Group {
    static const unsigned ids = 16;
    // Keys of the object table look like addresses, whose last bits say nothing.
    static unsigned keyOf(unsigned id) { return id / ids * 4; }

    Group* next;
    unsigned key;
    Known entries[ids];
};

qzBinaryReader::qzBinaryReader(qzStream* newStream, short testShort, long testLong,
                               const char* floatFormat)
    : floats(plain), doubles(plain), groups(nullptr), recent(nullptr),
      items(sizeof(qzBinaryReaderItem)), came(0), claimed(0) {
    const unsigned longOrder = static_cast<unsigned>(testLong);
    switch (static_cast<unsigned short>(testShort)) {
    case 0x1122:
        shorts = plain;
        break;
    case 0x2211:
        shorts = swapBytes;
        break;
    default:
        // Deliberate: the value in the message is the long's; whoever reads such
        // messages tells the writing machine by it. Pinned by
        // qzBinaryReaderDeathTest.UnusableHeaders.
        qzFatal("qzBinaryReader: unknown short ordering %x", longOrder);
    }
    switch (longOrder) {
    case 0x33445566:
        longs = plain;
        break;
    case 0x44336655:
        longs = swapBytes;
        break;
    case 0x55663344:
        longs = swapHalves;
        break;
    case 0x66554433:
        longs = reverseWords;
        break;
    default:
        qzFatal("qzBinaryReader: unknown long ordering %x", longOrder);
    }
    // Deliberate: floats and doubles are copied as they are, whatever the byte
    // order. Pinned by qzBinaryReader.ForeignOrderSwapsShortsAndLongsOnly.
    if (std::strcmp(floatFormat, "ieee") != 0) {
        qzFatal("qzBinaryReader: unsupported floating point format %s", floatFormat);
    }
    reading = 1;
    setStream(newStream);
}

qzBinaryReader::~qzBinaryReader() { qzBinaryReader::reset(); }

void qzBinaryReader::reset() {
    table.clear();
    parts.clear();
    while (Group* const group = groups) {
        groups = group->next;
        delete group;
    }
    recent = nullptr;
    work.resize(0);
    items.clear();
}

const char* qzBinaryReader::className() const { return "qzBinaryReader"; }

unsigned char qzBinaryReader::writeObject(void*, qzXDRObj*) {
    qzFatal("tried to invoke qzBinaryReader::writeObject");
}

qzTranscriber* makeBinaryReader(qzStream* stream, short testShort, long testLong,
                                const char* floatFormat) {
    return new qzBinaryReader(stream, testShort, testLong, floatFormat);
}

// Ids

qzBinaryReader::Known& qzBinaryReader::known(unsigned id) {
    const unsigned key = Group::keyOf(id);
    if (!recent || recent->key != key) {
        if (const unsigned long* group = table.lookup(key)) {
            recent = reinterpret_cast<Group*>(*group);
        } else {
            recent = new Group();
            recent->key = key;
            recent->next = groups;
            groups = recent;
            table.set(key, reinterpret_cast<unsigned long>(recent));
        }
    }
    return recent->entries[id % Group::ids];
}

qzBinaryReader::Known& qzBinaryReader::learn(unsigned id, Known::What what, void* address) {
    Known& entry = known(id);
    entry = Known();
    entry.what = what;
    entry.address = address;
    return entry;
}

// Records

unsigned char qzBinaryReader::fill() {
    char tag;
    char header[16];
    if (!stream->getBytes(&tag, 1)) return 0;
    const unsigned kind = tag & kindMask;
    const unsigned nlength = lengthBytes(static_cast<unsigned char>(tag) >> 6);
    const unsigned nfields = fieldBytes(kind);
    if (!stream->getBytes(header, nlength + nfields)) return 0;

    cursor = buffer;
    count = 0;
    record.kind = kind;
    const char* const fields = header + nlength;
    switch (kind) {
    case Continuation:
    case NullPointer:
        break;
    case TypeDefinition:
        record.typeId = leastFirst(fields, 4);
        if (!defineType()) return 0;
        break;
    case NewArray:
    case qzBOT_Chars:
    case qzBOT_Shorts:
    case qzBOT_Longs:
    case qzBOT_Floats:
    case qzBOT_Doubles:
        record.id = leastFirst(fields, 4);
        record.length = leastFirst(fields + 4, 4);
        break;
    case Object:
        record.id = leastFirst(fields, 4);
        record.typeId = leastFirst(fields + 4, 4);
        record.version = leastFirst(fields + 8, 4);
        break;
    case KnownArray:
    case NewObject:
    case KnownObject:
    case NewPart:
    case KnownPart:
        record.id = leastFirst(fields, 4);
        break;
    default:
        qzFatal("Whoops!");
    }
    const unsigned length = leastFirst(header, nlength);
    if (length > bufferSize) qzFatal("format error");
    if (length && !stream->getBytes(buffer, length)) return 0;
    count = length;
    came += 1 + nlength + nfields + length;
    return 1;
}

bool qzBinaryReader::mayClaim(qzTranscriber& t, std::size_t nbytes) {
    const std::size_t small = 4096;
    if (nbytes <= small) return true;
    qzBinaryReader* const reader = dynamic_cast<qzBinaryReader*>(&t);
    if (!reader) return true;
    const std::uint64_t granted = 1u << 26;
    if (reader->claimed + nbytes > granted + 64 * reader->came) return false;
    reader->claimed += nbytes;
    return true;
}

unsigned char qzBinaryReader::defineType() {
    const unsigned longest = 65536; // no type's name is anywhere near
    qzStackBuffer name;
    char c;
    do {
        if (name.length() == longest) qzFatal("format error");
        if (!stream->getBytes(&c, 1)) return 0;
        name.addc(c);
    } while (c);
    qzTypeObj* const type = qzTypeObj::findType(name.data());
    if (!type) qzFatal("unknown type %s", name.data());
    learn(record.typeId, Known::AType, type);
    return 1;
}

unsigned char qzBinaryReader::readBytes(char* to, unsigned nbytes) {
    while (nbytes > 0) {
        const unsigned left = static_cast<unsigned>(buffer + count - cursor);
        const unsigned piece = nbytes < left ? nbytes : left;
        qzRawMove(to, cursor, piece);
        cursor += piece;
        to += piece;
        nbytes -= piece;
        if (nbytes > 0 && !fill()) return 0;
    }
    return 1;
}

// Conversions

unsigned char qzBinaryReader::plain(qzBinaryReader& reader, char* to, unsigned nbytes) {
    return reader.readBytes(to, nbytes);
}

unsigned char qzBinaryReader::swapBytes(qzBinaryReader& reader, char* to, unsigned nbytes) {
    if (!reader.readBytes(to, nbytes)) return 0;
    for (unsigned i = 0; i + 2 <= nbytes; i += 2)
        std::swap(to[i], to[i + 1]);
    return 1;
}

unsigned char qzBinaryReader::swapHalves(qzBinaryReader& reader, char* to, unsigned nbytes) {
    if (!reader.readBytes(to, nbytes)) return 0;
    for (unsigned i = 0; i + 4 <= nbytes; i += 4) {
        std::swap(to[i], to[i + 2]);
        std::swap(to[i + 1], to[i + 3]);
    }
    return 1;
}

unsigned char qzBinaryReader::reverseWords(qzBinaryReader& reader, char* to, unsigned nbytes) {
    if (!reader.readBytes(to, nbytes)) return 0;
    for (unsigned i = 0; i + 4 <= nbytes; i += 4) {
        std::swap(to[i], to[i + 3]);
        std::swap(to[i + 1], to[i + 2]);
    }
    return 1;
}

unsigned char qzBinaryReader::floatsVAX(qzBinaryReader&, char*, unsigned) {
    qzFatal("qzBinaryReader_floatsVAX: not implemented");
}

// Values

unsigned char qzBinaryReader::readConverted(Conversion conversion, void* to, unsigned n,
                                            unsigned size) {
    return n <= UINT_MAX / size && conversion(*this, static_cast<char*>(to), n * size);
}

template <class Long> unsigned char qzBinaryReader::readLongs(Long* values, unsigned n) {
    using Narrow = std::conditional_t<std::is_signed_v<Long>, int, unsigned>;
    if (!readConverted(longs, values, n, sizeof(Narrow))) return 0;
    if constexpr (sizeof(Long) != sizeof(Narrow)) {
        // They came to the front of the room; from the last, none is overwritten
        // before it has moved.
        const char* const narrow = reinterpret_cast<const char*>(values);
        for (unsigned i = n; i-- > 0;) {
            Narrow value;
            std::memcpy(&value, narrow + i * sizeof value, sizeof value);
            values[i] = value;
        }
    }
    return 1;
}

unsigned char qzBinaryReader::xdr(char* values, unsigned n) { return readBytes(values, n); }
unsigned char qzBinaryReader::xdr(unsigned char* values, unsigned n) {
    return readBytes(reinterpret_cast<char*>(values), n);
}
unsigned char qzBinaryReader::xdr(short* values, unsigned n) {
    return readConverted(shorts, values, n, 2);
}
unsigned char qzBinaryReader::xdr(unsigned short* values, unsigned n) {
    return readConverted(shorts, values, n, 2);
}
unsigned char qzBinaryReader::xdr(long* values, unsigned n) { return readLongs(values, n); }
unsigned char qzBinaryReader::xdr(unsigned long* values, unsigned n) {
    return readLongs(values, n);
}
unsigned char qzBinaryReader::xdr(float* values, unsigned n) {
    return readConverted(floats, values, n, 4);
}
unsigned char qzBinaryReader::xdr(double* values, unsigned n) {
    return readConverted(doubles, values, n, 8);
}

unsigned char qzBinaryReader::xdr(qzStr* values, unsigned n) {
    for (unsigned i = 0; i < n; ++i) {
        if (!values[i].xdr(*this)) return 0;
    }
    return 1;
}

// Array pointers

template <class T> unsigned char qzBinaryReader::readPointer(T** array, unsigned n) {
    if (n > UINT_MAX / sizeof(T)) return 0;
    const bool isLong = std::is_same_v<T, long> || std::is_same_v<T, unsigned long>;
    const bool isText = static_cast<void*>(array) == qzStr::textBeingRead;
    return readPointer({array, 0, n * static_cast<unsigned>(sizeof(T)), isLong && sizeof(T) != 4,
                        isText ? qzBinaryReaderItem::AStringsText : qzBinaryReaderItem::AnArray});
}

unsigned char qzBinaryReader::readPointer(qzBinaryReaderItem item) {
    if (!fill()) return 0;
    item.id = record.id;
    Known& array = known(item.id);
    switch (record.kind) {
    case NewArray:
        if (!array.address) array.wide = item.wide;
        work.append(new (items.take()) qzBinaryReaderItem(item));
        return 1;
    case KnownArray:
        // Deliberate: an array that is still to come is null for this member.
        // Writers whose graphs come back repeat the promise instead. Pinned by
        // qzBinaryReader.ForwardReferencesToKnownThingsAreNull.
        if (array.address) {
            takeArray(item, array);
        } else {
            setPointer(item.member, nullptr);
        }
        return 1;
    default:
        qzFatal("format error");
    }
}

unsigned char qzBinaryReader::xdr(char** array, unsigned n) { return readPointer(array, n); }
unsigned char qzBinaryReader::xdr(unsigned char** array, unsigned n) {
    return readPointer(array, n);
}
unsigned char qzBinaryReader::xdr(short** array, unsigned n) { return readPointer(array, n); }
unsigned char qzBinaryReader::xdr(unsigned short** array, unsigned n) {
    return readPointer(array, n);
}
unsigned char qzBinaryReader::xdr(long** array, unsigned n) { return readPointer(array, n); }
unsigned char qzBinaryReader::xdr(unsigned long** array, unsigned n) {
    return readPointer(array, n);
}
unsigned char qzBinaryReader::xdr(float** array, unsigned n) { return readPointer(array, n); }
unsigned char qzBinaryReader::xdr(double** array, unsigned n) { return readPointer(array, n); }
unsigned char qzBinaryReader::xdr(char** text) { return readPointer(text, 0); }
unsigned char qzBinaryReader::xdr(unsigned char** text) { return readPointer(text, 0); }

unsigned char qzBinaryReader::xdr(int** array, unsigned n) {
    if constexpr (sizeof(int) == sizeof(long)) return qzTranscriber::xdr(array, n);
    return readPointer(array, n);
}
unsigned char qzBinaryReader::xdr(unsigned** array, unsigned n) {
    if constexpr (sizeof(int) == sizeof(long)) return qzTranscriber::xdr(array, n);
    return readPointer(array, n);
}

void qzBinaryReader::takeArray(const qzBinaryReaderItem& item, Known& array) {
    if (array.what != Known::AnArray || array.bytes < item.bytes || array.wide != item.wide ||
        array.owned) {
        qzFatal("format error");
    }
    if (item.wanted == qzBinaryReaderItem::AStringsText) {
        const char* const text = static_cast<char*>(array.address);
        if (array.shared || text[item.bytes - 1]) qzFatal("format error");
        array.owned = true;
    } else {
        array.shared = true;
    }
    setPointer(item.member, array.address);
}

void qzBinaryReader::membersMoved(const char* from, unsigned nbytes, char* to) {
    const std::uintptr_t first = reinterpret_cast<std::uintptr_t>(from);
    for (unsigned i = work.length(); i-- > 0;) {
        qzBinaryReaderItem& item = *static_cast<qzBinaryReaderItem*>(work[i]);
        const std::uintptr_t offset = reinterpret_cast<std::uintptr_t>(item.member) - first;
        if (offset >= nbytes) break;
        item.member = to + offset;
    }
}

// Objects

unsigned char qzBinaryReader::xdr(void* member, qzXDRObj*, qzTypeObj&, qzXDRObj*, void*) {
    if (!fill()) return 0;
    const qzBinaryReaderItem item = {member, record.id, 0, false, qzBinaryReaderItem::AnObject};
    switch (record.kind) {
    case NullPointer:
        setPointer(member, nullptr);
        return 1;
    case NewObject:
        work.append(new (items.take()) qzBinaryReaderItem(item));
        return 1;
    case KnownObject:
        if (known(item.id).address) {
            store(item);
        } else {
            setPointer(member, nullptr); // as for arrays
        }
        return 1;
    default:
        qzFatal("XXX bad news!");
    }
}

unsigned char qzBinaryReader::xdr(qzTypeObj& type, void* whole, void* part) {
    if (whole == part) return 1;
    if (!fill()) return 0;
    switch (record.kind) {
    case NewPart:
        // A part that is read a second time could let go of what waits to be
        // filled in from the first.
        if (known(record.id).address || parts.lookup(addressKey(part))) {
            qzFatal("XXX new base for old base");
        }
        learn(record.id, Known::AnObject, part);
        parts.add(addressKey(part), record.id);
        return type.xdr(part, *this);
    case KnownPart:
        if (!known(record.id).address) qzFatal("XXX old base previously unseen");
        return 1;
    default:
        qzFatal("XXX bad news!");
    }
}

void qzBinaryReader::store(const qzBinaryReaderItem& item) {
    Known& target = known(item.id);
    if (item.wanted != qzBinaryReaderItem::AnObject) {
        takeArray(item, target);
        return;
    }
    if (target.what != Known::AnObject) qzFatal("XXX bad news!");
    setPointer(item.member, target.address);
}

// Bodies

unsigned char qzBinaryReader::skipDefinitions() {
    while (record.kind == TypeDefinition) {
        if (!fill()) return 0;
    }
    return 1;
}

void* qzBinaryReader::readInstance() {
    if (!skipDefinitions()) return nullptr;
    switch (record.kind) {
    case qzBOT_Chars:
    case qzBOT_Shorts:
    case qzBOT_Longs:
    case qzBOT_Floats:
    case qzBOT_Doubles:
        return readArray();
    case Object:
        return readObjectBody();
    default:
        qzFatal("XXX baddest news");
    }
}

qzBinaryReader::Conversion qzBinaryReader::conversionOf(unsigned tag) const {
    switch (tag) {
    case qzBOT_Shorts:
        return shorts;
    case qzBOT_Longs:
        return longs;
    case qzBOT_Floats:
        return floats;
    case qzBOT_Doubles:
        return doubles;
    default:
        return plain;
    }
}

void* qzBinaryReader::readArray() {
    const unsigned tag = record.kind;
    const unsigned id = record.id;
    const unsigned length = record.length;
    const bool wide = tag == qzBOT_Longs && known(id).wide;
    const unsigned scale = wide ? sizeof(long) / 4 : 1; // bytes in memory for one in the stream
    if (length % elementBytes(tag) || length > UINT_MAX / scale) qzFatal("format error");
    char* const block = readBlock(conversionOf(tag), length, wide, scale);
    if (!block) return nullptr;
    Known& array = learn(id, Known::AnArray, block);
    array.bytes = length * scale;
    array.wide = wide;
    return block;
}

char* qzBinaryReader::readBlock(Conversion conversion, unsigned length, bool wide, unsigned scale) {
    const unsigned firstRoom = 1 << 20;
    char* block = nullptr;
    unsigned have = 0;
    do {
        const unsigned step = have ? have : firstRoom; // doubles with what came
        const unsigned room = length - have < step ? length : have + step;
        char* const grown =
            static_cast<char*>(qzRawTryResize(block, std::size_t(room) * scale + 1));
        if (grown) block = grown;
        if (!grown ||
            !readPiece(conversion, block + std::size_t(have) * scale, room - have, wide)) {
            qzRawFree(block);
            return nullptr;
        }
        have = room;
    } while (have < length);
    block[std::size_t(length) * scale] = 0;
    return block;
}

unsigned char qzBinaryReader::readPiece(Conversion conversion, char* to, unsigned nbytes,
                                        bool wide) {
    return wide ? readLongs(reinterpret_cast<long*>(to), nbytes / 4)
                : conversion(*this, to, nbytes);
}

void* qzBinaryReader::readObjectBody() {
    const Known& definition = known(record.typeId);
    if (definition.what != Known::AType) qzFatal("format error");
    qzTypeObj& type = *static_cast<qzTypeObj*>(definition.address);
    if (record.version != type.version) qzFatal("XXX version error handling is missing");
    void* const instance = type.create ? type.create(type) : nullptr;
    if (!instance) qzFatal("unknown type %s", type.name);
    learn(record.id, Known::AnObject, instance);
    parts.clear();
    if (!type.xdr(instance, *this)) qzFatal("XXX error handling is missing");
    return instance;
}

void* qzBinaryReader::readObject(qzTypeObj&) {
    if (!fill() || !skipDefinitions()) return nullptr;
    // Deliberate: an array, which has no class, is nobody's root. Callers take
    // what they get for an object. Pinned by
    // qzBinaryReader.BrokenStreamsEndInTheirMessage.
    if (record.kind != Object) qzFatal("XXX baddest news");
    void* const root = readObjectBody();
    while (const unsigned pending = work.length()) {
        const qzBinaryReaderItem item = *static_cast<qzBinaryReaderItem*>(work[pending - 1]);
        work.remove(pending - 1, 1);
        items.giveBack();
        while (!known(item.id).address) {
            if (!fill() || !readInstance()) return nullptr;
        }
        store(item);
    }
    return root;
}
