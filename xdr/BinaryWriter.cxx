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

#include "util/Fatal.h"
#include "util/Str.h"
#include "util/detail/RawMemory.h"
#include "xdr/Stream.h"
#include "xdr/XDRObj.h"

using namespace qzBinaryRecord;

namespace {

// The graph form ends here, where no reader could hold what it reads.
const unsigned lastGraphId = 0x7fffffff;

// Least significant byte first, in front of the place; returns where it begins.
template <unsigned nbytes> char* putBefore(char* place, unsigned value) {
    place -= nbytes;
    for (unsigned i = 0; i < nbytes; ++i)
        place[i] = static_cast<char>(value >> 8 * i);
    return place;
}

// The tag, which tells how many bytes the length has, and the length.
char* putTagBefore(char* place, unsigned kind, unsigned dataLength) {
    if (dataLength == 0) return putBefore<1>(place, kind);
    if (dataLength < 0x100) return putBefore<1>(putBefore<1>(place, dataLength), kind | 0x40);
    if (dataLength < 0x10000) return putBefore<1>(putBefore<2>(place, dataLength), kind | 0x80);
    return putBefore<1>(putBefore<4>(place, dataLength), kind | 0xC0);
}

} // namespace

qzBinaryWriter::qzBinaryWriter(qzStream* newStream) : qzBinaryWriter(newStream, Standard) {}

qzBinaryWriter::qzBinaryWriter(qzStream* newStream, Form form) : form(form) {
    setStream(newStream);
    ids.add(nullptr); // which is 0
}

qzBinaryWriter::~qzBinaryWriter() { qzBinaryWriter::reset(); }

void qzBinaryWriter::reset() {
    ids.clear();
    parts.clear();
    work.clear();
    begun.clear();
}

const char* qzBinaryWriter::className() const { return "qzBinaryWriter"; }

void* qzBinaryWriter::readObject(qzTypeObj&) {
    qzFatal("tried to invoke qzBinaryWriter::readObject");
}

// Records

// The header of the record at hand, in front of its data; returns where it begins.
char* qzBinaryWriter::putHeaderBefore(char* data, unsigned dataLength) const {
    char* at = data;
    if (form == Graph && isReference(record.kind)) at = putBefore<4>(at, 0);
    const Fields& fields = fieldsOf(record.kind);
    for (unsigned i = fields.count; i-- > 0;)
        at = putBefore<4>(at, record.*fields.at[i]);
    return putTagBefore(at, record.kind, dataLength);
}

unsigned char qzBinaryWriter::putRecords(const char* bytes, std::size_t nbytes) {
    if (form == Graph && ids.next() - 1 > lastGraphId) return 0;
    return stream->putBytes(bytes, static_cast<unsigned>(nbytes));
}

unsigned char qzBinaryWriter::flush() {
    if (record.kind == Continuation && count == 0) return 1;
    char* const header = putHeaderBefore(buffer, count);
    if (!putRecords(header, buffer + count - header)) return 0;
    if (record.kind == TypeDefinition) { // which is put at once: it has no data
        if (!stream->putBytes(record.name, static_cast<unsigned>(std::strlen(record.name)) + 1)) {
            return 0;
        }
    }
    cursor = buffer;
    count = 0;
    record.kind = Continuation;
    return 1;
}

unsigned char qzBinaryWriter::writeBytes(const void* bytes, unsigned n) {
    if (n == 4 && capacity - count > 4) { // most members: no call for them
        std::memcpy(cursor, bytes, 4);
        cursor += 4;
        count += 4;
        return 1;
    }
    const char* from = static_cast<const char*>(bytes);
    while (n > 0 && n >= capacity - count) {
        const bool isMuch = count == 0 && n >= 2 * capacity;
        const unsigned piece = isMuch ? n / capacity * capacity : capacity - count;
        if (isMuch) {
            if (!writeFullRecords(from, piece)) return 0;
        } else {
            std::memcpy(cursor, from, piece);
            cursor += piece;
            count = capacity;
            if (!flush()) return 0;
        }
        from += piece;
        n -= piece;
    }
    qzRawMove(cursor, from, n);
    cursor += n;
    count += n;
    return 1;
}

// Bytes that fill records, of which many are put together: a stream call for each
// costs as much as copying it, and a system call for a few of them even more.
unsigned char qzBinaryWriter::writeFullRecords(const char* from, unsigned n) {
    const unsigned most = 120;
    const unsigned together = n / capacity < most ? n / capacity : most;
    char* const records =
        static_cast<char*>(qzRawAlloc(std::size_t(together) * (headerSize + maxData)));
    unsigned char arePut = 1;
    while (arePut && n > 0) {
        const unsigned kind = record.kind;
        char* end = records;
        for (unsigned i = 0; i < together && n > 0; ++i) {
            char* const begin = putHeaderBefore(buffer, capacity);
            std::memcpy(end, begin, buffer - begin);
            end += buffer - begin;
            std::memcpy(end, from, capacity);
            end += capacity;
            from += capacity;
            n -= capacity;
            record.kind = Continuation;
        }
        arePut = putRecords(records, end - records);
        if (!arePut) record.kind = kind;
    }
    qzRawFree(records);
    return arePut;
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
    const Meeting met = array ? meet(array) : Meeting{0, false, true};
    if (met.isNew) work.emplace_back(array, met.id, length, tag, memorySize);
    record.id = met.id;
    if (met.isOut) {
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

qzBinaryWriter::Meeting qzBinaryWriter::meet(void* address) {
    unsigned id;
    if (!ids.find(address, id)) return {ids.add(address), true, false};
    return {id, false, form == Standard || hasBegun(id)};
}

bool qzBinaryWriter::hasBegun(unsigned id) const {
    const unsigned bit = id - ids.oldest();
    return bit / 32 < begun.size() && begun[bit / 32] >> bit % 32 & 1;
}

void qzBinaryWriter::markBegun(unsigned id) {
    const unsigned bit = id - ids.oldest();
    const std::size_t word = bit / 32;
    if (word >= begun.size()) begun.resize(word + word / 2 + 1);
    begun[word] |= 1u << bit % 32;
}

unsigned qzBinaryWriter::writeType(qzTypeObj& type) {
    unsigned id;
    if (ids.find(&type, id)) return id;
    if (!flush()) return 0;
    id = ids.add(&type);
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
    const Meeting met = meet(address);
    if (met.isNew) work.emplace_back(address, met.id, type);
    record.id = met.id;
    record.kind = met.isOut ? KnownObject : NewObject;
    return 1;
}

unsigned char qzBinaryWriter::xdr(qzTypeObj& type, void* whole, void* part) {
    if (whole == part) return 1;
    if (!flush()) return 0;
    const bool isKnown = ids.find(part, record.id);
    if (isPartOut(part, isKnown)) {
        record.kind = KnownPart;
        return 1;
    }
    // In the graph form, what waits for a part's body gets it here, in place.
    if (!isKnown || hasBegun(record.id)) record.id = ids.add(part);
    record.kind = NewPart;
    if (form == Graph) {
        markBegun(record.id);
        parts.set(addressKey(part), 1);
    }
    return type.xdr(part, *this);
}

// A reader builds each object from its own records: in the graph form a part is
// out when this object has put it, not when an earlier one did.
bool qzBinaryWriter::isPartOut(const void* part, bool isKnown) const {
    return form == Standard ? isKnown : parts.lookup(addressKey(part)) != 0;
}

// A root always gets an id of its own, under which bodies of it go that still
// wait from a graph that failed.
void qzBinaryWriter::pushRoot(void* root, qzTypeObj& type) {
    const unsigned id = ids.add(root);
    for (qzBinaryWriterItem& item : work) {
        if (item.address == root) item.id = id;
    }
    work.emplace_back(root, id, type);
}

unsigned char qzBinaryWriter::writeObject(void* root, qzXDRObj* object) {
    const unsigned ahead = 4; // bodies: each would have to be waited for
    pushRoot(root, object->getTypeObj());
    while (!work.empty()) {
        const qzBinaryWriterItem item = work.back();
        work.pop_back();
        if (work.size() > ahead) __builtin_prefetch((work.end() - ahead)->address);
        if (!writeItem(item) || !flush()) return 0;
    }
    return 1;
}

unsigned char qzBinaryWriter::writeItem(const qzBinaryWriterItem& item) {
    if (form == Graph) {
        if (hasBegun(item.id)) return 1; // it went out as a part
        markBegun(item.id);
    }
    record.id = item.id;
    return item.kind == qzBinaryWriterItem::Object ? writeObjectItem(item) : writeArrayItem(item);
}

// Deliberate: in the standard form the version is that of the type defined last,
// not the object's own; readers compare it as it stands, and the library's types
// all have 1. Pinned by qzBinaryWriter.ObjectsCarryTheVersionLastDefined.
unsigned char qzBinaryWriter::writeObjectItem(const qzBinaryWriterItem& item) {
    const unsigned typeId = writeType(*item.type);
    if (!typeId) return 0;
    record.kind = ObjectBody;
    record.typeId = typeId;
    if (form == Graph) {
        record.version = item.type->version;
        parts.clear();
    }
    return item.type->xdr(item.address, *this);
}

unsigned char qzBinaryWriter::writeArrayItem(const qzBinaryWriterItem& item) {
    record.kind = item.tag;
    record.length = item.length;
    if (item.tag == qzBOT_Longs && item.memorySize != 4) {
        return writeLongs(static_cast<long*>(item.address), item.length / 4);
    }
    return writeBytes(item.address, item.length);
}
