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

using namespace qzBinaryRecord;

namespace {

// Deliberate: pointers and parts are followed by 8 bytes of fields, of which the
// first 4 count, though the standard writer puts only these. The format's
// readers have always consumed 8, and a writer that puts 8 is read by all of
// them. Pinned by qzBinaryReader.PointersConsumeEightBytesOfFields.
unsigned fieldBytes(unsigned kind, unsigned fields) { return isReference(kind) ? 8 : 4 * fields; }

template <unsigned nbytes> unsigned leastFirst(const char* from) {
    unsigned value = 0;
    for (unsigned i = 0; i < nbytes; ++i)
        value |= static_cast<unsigned>(static_cast<unsigned char>(from[i])) << 8 * i;
    return value;
}

// The data length behind a tag, which has no, 1, 2 or 4 bytes.
unsigned dataLength(const char* from, unsigned nbytes) {
    switch (nbytes) {
    case 0:
        return 0;
    case 1:
        return leastFirst<1>(from);
    case 2:
        return leastFirst<2>(from);
    default:
        return leastFirst<4>(from);
    }
}

void setPointer(void* member, void* address) { std::memcpy(member, &address, sizeof address); }

} // namespace

qzBinaryReader::qzBinaryReader(qzStream* newStream, short testShort, long testLong,
                               const char* floatFormat)
    : floats(plain), doubles(plain), firstId(0), strays(nullptr), came(0), cameBefore(0),
      claimed(0) {
    const unsigned longOrder = static_cast<unsigned>(testLong);
    switch (static_cast<unsigned short>(testShort)) {
    case 0x1122:
        shorts = plain;
        break;
    case 0x2211:
        shorts = swapped<2, 1>;
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
        longs = swapped<2, 1>;
        break;
    case 0x55663344:
        longs = swapped<4, 2>;
        break;
    case 0x66554433:
        longs = swapped<4, 3>;
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
    for (unsigned i = 0; i < chunks.length(); ++i)
        qzRawFree(chunks[i]);
    chunks.resize(0);
    while (Stray* const stray = strays) {
        strays = stray->next;
        delete stray;
    }
    strayTable.clear();
    cameBefore = came;
    parts.clear();
    work.clear();
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

// Writers count, and it takes some eight bytes to tell of an id. After a reset they
// go on from where they were.
qzBinaryReader::Known& qzBinaryReader::farKnown(unsigned id) {
    if (chunks.length() == 0) firstId = id - id % chunkIds;
    const unsigned chunk = (id - firstId) / chunkIds;
    if (chunk <= (came - cameBefore) / 8 / chunkIds) {
        while (chunk >= chunks.length())
            addChunk();
        return known(id);
    }
    Stray* stray = reinterpret_cast<Stray*>(strayTable.lookup(id));
    if (!stray) {
        stray = strays = new Stray{strays, {}};
        strayTable.set(id, reinterpret_cast<unsigned long>(stray));
    }
    return stray->known;
}

void qzBinaryReader::addChunk() {
    Known* const chunk = static_cast<Known*>(qzRawAlloc(chunkIds * sizeof(Known)));
    const unsigned first = firstId + chunks.length() * chunkIds;
    for (unsigned i = 0; i < chunkIds; ++i) {
        const Stray* const stray = reinterpret_cast<Stray*>(strayTable.lookup(first + i));
        new (chunk + i) Known(stray ? stray->known : Known());
    }
    chunks.append(chunk);
}

qzBinaryReader::Known& qzBinaryReader::learn(unsigned id, Known::What what, void* address) {
    Known& entry = known(id);
    entry = Known();
    entry.what = what;
    entry.address = address;
    return entry;
}

// Records

unsigned char qzBinaryReader::readHeader(unsigned& length) {
    char tag;
    char header[headerSize];
    if (!stream->getBytes(&tag, 1)) return 0;
    cursor = buffer;
    count = 0;
    record.kind = tag & kindBits;
    const unsigned lengthClass = static_cast<unsigned char>(tag) >> 6;
    const unsigned nlength = lengthClass == 3 ? 4 : lengthClass;
    const bool exists = record.kind <= LastUsedKind;
    const unsigned nheader =
        nlength + (exists ? fieldBytes(record.kind, fieldsOf(record.kind).count) : 0);
    if (nheader && !stream->getBytes(header, nheader)) return 0;
    const Fields& fields = fieldsOf(record.kind);
    came += 1 + nheader;
    for (unsigned i = 0; i < fields.count; ++i)
        record.*fields.at[i] = leastFirst<4>(header + nlength + 4 * i);
    if (record.kind == TypeDefinition && !defineType()) return 0;
    length = dataLength(header, nlength);
    if (length > maxData) qzFatal("format error");
    came += length;
    return 1;
}

unsigned char qzBinaryReader::readData(char* to, unsigned length) {
    return length == 0 || stream->getBytes(to, length);
}

unsigned char qzBinaryReader::fill() {
    unsigned length;
    if (!readHeader(length) || !readData(buffer, length)) return 0;
    count = length;
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
    qzStackBuffer name;
    char c;
    do {
        if (name.length() == maxName) qzFatal("format error");
        if (!stream->getBytes(&c, 1)) return 0;
        name.addc(c);
    } while (c);
    qzTypeObj* const type = qzTypeObj::findType(name.data());
    if (!type) qzFatal("unknown type %s", name.data());
    learn(record.typeId, Known::AType, type);
    return 1;
}

unsigned char qzBinaryReader::readBytes(char* to, unsigned nbytes) {
    unsigned left = static_cast<unsigned>(buffer + count - cursor);
    if (nbytes == 4 && left >= 4) { // most members: no call for them
        std::memcpy(to, cursor, 4);
        cursor += 4;
        return 1;
    }
    while (nbytes > left) {
        qzRawMove(to, cursor, left);
        cursor += left;
        to += left;
        nbytes -= left;
        unsigned length;
        if (!readHeader(length)) return 0;
        if (length <= nbytes) { // all of it is wanted: no need to go by the buffer
            if (!readData(to, length)) return 0;
            to += length;
            nbytes -= length;
            left = 0;
        } else {
            if (!readData(buffer, length)) return 0;
            count = left = length;
        }
    }
    qzRawMove(to, cursor, nbytes);
    cursor += nbytes;
    return 1;
}

// Conversions

unsigned char qzBinaryReader::plain(qzBinaryReader& reader, char* to, unsigned nbytes) {
    return reader.readBytes(to, nbytes);
}

template <unsigned Unit, unsigned Mask>
unsigned char qzBinaryReader::swapped(qzBinaryReader& reader, char* to, unsigned nbytes) {
    if (!reader.readBytes(to, nbytes)) return 0;
    for (unsigned i = 0; nbytes - i >= Unit; i += Unit) {
        for (unsigned byte = 0; byte < Unit; ++byte) {
            if (byte < (byte ^ Mask)) std::swap(to[i + byte], to[i + (byte ^ Mask)]);
        }
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
        work.push_back(item);
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
    for (auto item = work.rbegin(); item != work.rend(); ++item) {
        const std::uintptr_t offset = reinterpret_cast<std::uintptr_t>(item->member) - first;
        if (offset >= nbytes) break;
        item->member = to + offset;
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
        work.push_back(item);
        return 1;
    case KnownObject: {
        Known& target = known(item.id);
        if (target.address) {
            store(item, target);
        } else {
            setPointer(member, nullptr); // as for arrays
        }
        return 1;
    }
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
        parts.set(addressKey(part), 1);
        return type.xdr(part, *this);
    case KnownPart:
        if (!known(record.id).address) qzFatal("XXX old base previously unseen");
        return 1;
    default:
        qzFatal("XXX bad news!");
    }
}

void qzBinaryReader::store(const qzBinaryReaderItem& item, Known& target) {
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
    case ObjectBody:
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
    if (length % elementSize(tag) || length > UINT_MAX / scale) qzFatal("format error");
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
    if (record.kind != ObjectBody) qzFatal("XXX baddest news");
    void* const root = readObjectBody();
    while (!work.empty()) {
        const qzBinaryReaderItem item = work.back();
        work.pop_back();
        Known* target = &known(item.id);
        while (!target->address) {
            if (!fill() || !readInstance()) return nullptr;
            target = &known(item.id);
        }
        store(item, *target);
    }
    return root;
}
