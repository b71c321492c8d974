// The writer of the binary object format.
//
// stream := header record*
// record := tag length? field* name? data
// tag    := kind (bits 0-5) + length class (bits 6-7)
// length := nothing, 1, 2 or 4 bytes for length classes 0 to 3
// field  := 4 bytes
// name   := text NUL                        (kind 2 only)
//
// Lengths and fields are written least significant byte first, data as the
// host's memory image. Fields by kind:
//
//      0  continuation           none      4      known array       id (0)
//      1  null pointer           none      5-9    array body        id, length
//      2  type definition        type id   10     object body       id, type id, version
//      3  new array              id, length    11-14  pointers, parts   id (0)
//
// (0) is a second field that is 0, put by the graph form only.
#include "xdr/BinaryWriter.h"

#include <climits>
#include <cstring>
#include <new>

#include "util/Fatal.h"
#include "util/Str.h"
#include "util/detail/RawMemory.h"
#include "xdr/Stream.h"
#include "xdr/XDRObj.h"

namespace {

// In the graph form, marks the id of a body that has not begun.
const unsigned long pendingMark = 0x80000000ul;

// A record's header, byte by byte.
class Header {
  public:
    Header() : end(bytes) {}
    void put(unsigned value, unsigned nbytes) {
        for (; nbytes > 0; --nbytes, value >>= 8)
            *end++ = static_cast<char>(value);
    }
    unsigned size() const { return static_cast<unsigned>(end - bytes); }
    // Copies the header to where it ends at the place, and returns its beginning.
    char* moveBefore(char* place) const {
        return static_cast<char*>(std::memcpy(place - size(), bytes, size()));
    }

  private:
    char bytes[20];
    char* end;
};

void putTag(Header& header, unsigned kind, unsigned dataLength) {
    if (dataLength == 0) {
        header.put(kind, 1);
    } else if (dataLength < 0x100) {
        header.put(kind | 0x40, 1);
        header.put(dataLength, 1);
    } else if (dataLength < 0x10000) {
        header.put(kind | 0x80, 1);
        header.put(dataLength, 2);
    } else {
        header.put(kind | 0xC0, 1);
        header.put(dataLength, 4);
    }
}

} // namespace

qzBinaryWriter::qzBinaryWriter(qzStream* newStream) : qzBinaryWriter(newStream, Standard) {}

qzBinaryWriter::qzBinaryWriter(qzStream* newStream, Form form)
    : nextId(1), form(form), items(sizeof(qzBinaryWriterItem)) {
    setStream(newStream);
    table.set(addressKey(nullptr), 0);
}

qzBinaryWriter::~qzBinaryWriter() { qzBinaryWriter::reset(); }

void qzBinaryWriter::reset() {
    table.clear();
    parts.clear();
    work.resize(0);
    items.clear();
}

const char* qzBinaryWriter::className() const { return "qzBinaryWriter"; }

void* qzBinaryWriter::readObject(qzTypeObj&) {
    qzFatal("tried to invoke qzBinaryWriter::readObject");
}

// Records

unsigned char qzBinaryWriter::flush() {
    if (record.kind == Continuation && count == 0) return 1;
    if (form == Graph && nextId > pendingMark) return 0;
    Header header;
    putTag(header, record.kind, count);
    switch (record.kind) {
    case Continuation:
    case NullPointer:
        break;
    case TypeDefinition:
        header.put(record.typeId, 4);
        break;
    case NewArray:
    case qzBOT_Chars:
    case qzBOT_Shorts:
    case qzBOT_Longs:
    case qzBOT_Floats:
    case qzBOT_Doubles:
        header.put(record.id, 4);
        header.put(record.length, 4);
        break;
    case Object:
        header.put(record.id, 4);
        header.put(record.typeId, 4);
        header.put(record.version, 4);
        break;
    case KnownArray:
    case NewObject:
    case KnownObject:
    case NewPart:
    case KnownPart:
        header.put(record.id, 4);
        if (form == Graph) header.put(0, 4);
        break;
    default:
        qzFatal("Whoops!");
    }
    if (!stream->putBytes(header.moveBefore(buffer), header.size() + count)) return 0;
    if (record.kind == TypeDefinition) { // which is put at once: it has no data
        const unsigned length = static_cast<unsigned>(std::strlen(record.name)) + 1;
        if (!stream->putBytes(record.name, length)) return 0;
    }
    cursor = buffer;
    count = 0;
    record.kind = Continuation;
    return 1;
}

unsigned char qzBinaryWriter::writeBytes(const void* bytes, unsigned n) {
    const char* from = static_cast<const char*>(bytes);
    while (n > 0) {
        const unsigned piece = n < capacity - count ? n : capacity - count;
        qzRawMove(cursor, from, piece);
        cursor += piece;
        count += piece;
        from += piece;
        n -= piece;
        if (count == capacity && !flush()) return 0;
    }
    return 1;
}

unsigned char qzBinaryWriter::writeNull() {
    if (!flush()) return 0;
    record.kind = NullPointer;
    return 1;
}

// Values

unsigned char qzBinaryWriter::writeValues(const void* values, unsigned n, unsigned size) {
    return n <= UINT_MAX / size && writeBytes(values, n * size);
}

template <class Long> unsigned char qzBinaryWriter::writeLongs(const Long* values, unsigned n) {
    if constexpr (sizeof(Long) == 4) {
        return writeValues(values, n, 4);
    } else {
        for (unsigned i = 0; i < n; ++i) {
            const unsigned narrow = static_cast<unsigned>(values[i]);
            const bool fits = Long(-1) < 0
                                  ? values[i] == static_cast<Long>(static_cast<int>(narrow))
                                  : values[i] == narrow;
            if (!fits || !writeBytes(&narrow, 4)) return 0;
        }
        return 1;
    }
}

unsigned char qzBinaryWriter::xdr(char* values, unsigned n) { return writeBytes(values, n); }
unsigned char qzBinaryWriter::xdr(unsigned char* values, unsigned n) {
    return writeBytes(values, n);
}
unsigned char qzBinaryWriter::xdr(short* values, unsigned n) { return writeValues(values, n, 2); }
unsigned char qzBinaryWriter::xdr(unsigned short* values, unsigned n) {
    return writeValues(values, n, 2);
}
unsigned char qzBinaryWriter::xdr(long* values, unsigned n) { return writeLongs(values, n); }
unsigned char qzBinaryWriter::xdr(unsigned long* values, unsigned n) {
    return writeLongs(values, n);
}
unsigned char qzBinaryWriter::xdr(float* values, unsigned n) { return writeValues(values, n, 4); }
unsigned char qzBinaryWriter::xdr(double* values, unsigned n) { return writeValues(values, n, 8); }

unsigned char qzBinaryWriter::xdr(qzStr* values, unsigned n) {
    for (unsigned i = 0; i < n; ++i) {
        if (!values[i].xdr(*this)) return 0;
    }
    return 1;
}

// Arrays

unsigned char qzBinaryWriter::writeArray(void* array, unsigned n, qzBinaryOTTag tag,
                                         unsigned memorySize, unsigned streamSize) {
    if (!array && form == Standard) return writeNull();
    if (n > UINT_MAX / streamSize || !flush()) return 0;
    const unsigned length = n * streamSize;
    bool isOut;
    if (!array) {
        record.id = 0;
        isOut = true;
    } else if (!findId(array, isOut)) {
        record.id = push(
            {qzBinaryWriterItem::PrimitiveArray, array, nullptr, length, tag, memorySize, nullptr},
            nullptr);
        isOut = false;
    }
    if (isOut) {
        record.kind = KnownArray;
        return flush(); // at once: it carries no data
    }
    record.kind = NewArray;
    record.length = length;
    return 1;
}

unsigned char qzBinaryWriter::xdr(char** array, unsigned n) {
    return writeArray(*array, n, qzBOT_Chars, 1, 1);
}
unsigned char qzBinaryWriter::xdr(unsigned char** array, unsigned n) {
    return writeArray(*array, n, qzBOT_Chars, 1, 1);
}
unsigned char qzBinaryWriter::xdr(short** array, unsigned n) {
    return writeArray(*array, n, qzBOT_Shorts, 2, 2);
}
unsigned char qzBinaryWriter::xdr(unsigned short** array, unsigned n) {
    return writeArray(*array, n, qzBOT_Shorts, 2, 2);
}
unsigned char qzBinaryWriter::xdr(long** array, unsigned n) {
    return writeArray(*array, n, qzBOT_Longs, sizeof(long), 4);
}
unsigned char qzBinaryWriter::xdr(unsigned long** array, unsigned n) {
    return writeArray(*array, n, qzBOT_Longs, sizeof(long), 4);
}
unsigned char qzBinaryWriter::xdr(int** array, unsigned n) {
    if constexpr (sizeof(int) == sizeof(long)) return qzTranscriber::xdr(array, n);
    return writeArray(*array, n, qzBOT_Longs, 4, 4);
}
unsigned char qzBinaryWriter::xdr(unsigned** array, unsigned n) {
    if constexpr (sizeof(int) == sizeof(long)) return qzTranscriber::xdr(array, n);
    return writeArray(*array, n, qzBOT_Longs, 4, 4);
}
unsigned char qzBinaryWriter::xdr(float** array, unsigned n) {
    return writeArray(*array, n, qzBOT_Floats, 4, 4);
}
unsigned char qzBinaryWriter::xdr(double** array, unsigned n) {
    return writeArray(*array, n, qzBOT_Doubles, 8, 8);
}

unsigned char qzBinaryWriter::xdr(char** text) {
    const unsigned n = *text ? qzRawLength(std::strlen(*text)) + 1 : 0;
    return writeArray(*text, n, qzBOT_Chars, 1, 1);
}
unsigned char qzBinaryWriter::xdr(unsigned char** text) {
    return xdr(reinterpret_cast<char**>(text));
}

// Objects

unsigned qzBinaryWriter::push(qzBinaryWriterItem item, unsigned long* known) {
    const unsigned id = nextId++;
    const unsigned long entry = form == Graph ? id | pendingMark : id;
    if (known) {
        *known = entry;
    } else {
        known = table.add(addressKey(item.address), entry);
    }
    item.id = known;
    work.append(new (items.take()) qzBinaryWriterItem(item));
    return id;
}

bool qzBinaryWriter::findId(const void* address, bool& isOut) {
    const unsigned long* const known = table.lookup(addressKey(address));
    if (!known) return false;
    isOut = form == Standard || !(*known & pendingMark);
    record.id = static_cast<unsigned>(form == Standard ? *known : *known & ~pendingMark);
    return true;
}

unsigned qzBinaryWriter::writeType(qzTypeObj& type) {
    if (const unsigned long* known = table.lookup(addressKey(&type))) {
        return static_cast<unsigned>(*known);
    }
    if (!flush()) return 0;
    const unsigned id = nextId++;
    table.set(addressKey(&type), id);
    record.kind = TypeDefinition;
    record.typeId = id;
    record.version = type.version;
    record.name = type.name;
    return flush() ? id : 0;
}

unsigned char qzBinaryWriter::xdr(void* member, qzXDRObj* object, qzTypeObj&, qzXDRObj*, void*) {
    void* const address = *static_cast<void**>(member);
    if (!address) return writeNull();
    if (!flush()) return 0;
    qzTypeObj& type = object->getTypeObj();
    if (form == Standard && !writeType(type)) return 0;
    bool isOut;
    if (!findId(address, isOut)) {
        record.id =
            push({qzBinaryWriterItem::Object, address, &type, 0, qzBOT_Chars, 0, nullptr}, nullptr);
        isOut = false;
    }
    record.kind = isOut ? KnownObject : NewObject;
    return 1;
}

unsigned char qzBinaryWriter::xdr(qzTypeObj& type, void* whole, void* part) {
    if (whole == part) return 1;
    if (!flush()) return 0;
    bool isOut = false;
    const bool isKnown = findId(part, isOut);
    if (isPartOut(part, isKnown)) {
        record.kind = KnownPart;
        return 1;
    }
    // In the graph form, what waits for a part's body gets it here, in place.
    if (!isKnown || isOut) {
        record.id = nextId++;
    }
    record.kind = NewPart;
    table.set(addressKey(part), record.id);
    if (form == Graph) parts.add(addressKey(part), record.id);
    return type.xdr(part, *this);
}

// A reader builds each object from its own records: in the graph form a part is
// out when this object has put it, not when an earlier one did.
bool qzBinaryWriter::isPartOut(const void* part, bool isKnown) const {
    return form == Standard ? isKnown : parts.lookup(addressKey(part)) != nullptr;
}

unsigned char qzBinaryWriter::writeObject(void* root, qzXDRObj* object) {
    push({qzBinaryWriterItem::Object, root, &object->getTypeObj(), 0, qzBOT_Chars, 0, nullptr},
         table.lookup(addressKey(root)));
    while (const unsigned pending = work.length()) {
        const qzBinaryWriterItem item = *static_cast<qzBinaryWriterItem*>(work[pending - 1]);
        work.remove(pending - 1, 1);
        items.giveBack();
        if (!writeItem(item) || !flush()) return 0;
    }
    return 1;
}

unsigned char qzBinaryWriter::writeItem(const qzBinaryWriterItem& item) {
    unsigned long& entry = *item.id;
    if (form == Graph) {
        if (!(entry & pendingMark)) return 1; // it went out as a part
        entry &= ~pendingMark;
    }
    const unsigned id = static_cast<unsigned>(entry);
    return item.kind == qzBinaryWriterItem::Object ? writeObjectItem(item, id)
                                                   : writeArrayItem(item, id);
}

// Deliberate: in the standard form the version is that of the type defined last,
// not the object's own; readers compare it as it stands, and the library's types
// all have 1. Pinned by qzBinaryWriter.ObjectsCarryTheVersionLastDefined.
unsigned char qzBinaryWriter::writeObjectItem(const qzBinaryWriterItem& item, unsigned id) {
    const unsigned typeId = writeType(*item.type);
    if (!typeId) return 0;
    record.kind = Object;
    record.id = id;
    record.typeId = typeId;
    if (form == Graph) {
        record.version = item.type->version;
        parts.clear();
    }
    return item.type->xdr(item.address, *this);
}

unsigned char qzBinaryWriter::writeArrayItem(const qzBinaryWriterItem& item, unsigned id) {
    record.kind = item.tag;
    record.id = id;
    record.length = item.length;
    if (item.tag == qzBOT_Longs && item.memorySize != 4) {
        return writeLongs(static_cast<long*>(item.address), item.length / 4);
    }
    return writeBytes(item.address, item.length);
}
