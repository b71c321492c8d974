#include "event/Property.h"

#include <cstring>

#include "event/Data.h"
#include "event/DataTypes.h"
#include "event/Obj.h"
#include "util/StrArray.h"
#include "util/detail/RawMemory.h"

qzStrArray* qzProperty::qz_propertyNames;
unsigned short qzProperty::nextTag;

namespace {

// The slot is settled before the release, which may end in the destruction of
// the property itself.
template <class Shared> void replaceShared(Shared*& slot, Shared* shared) {
    Shared* const old = slot;
    const bool goesWithItsHolder = old && old == shared && old->references() == 1;
    slot = goesWithItsHolder ? nullptr : shared;
    if (slot) slot->addRef();
    if (old) old->delRef();
}

// A new place in the table, under a name that findTag() never finds: no C string
// equals a text with a NUL inside.
void appendUnnamed(qzStrArray& names) {
    const unsigned step = 50;
    if (names.length() % step == 0) names.setMaxLength(names.length() + step);
    names.append(qzStr(1u));
}

} // namespace

qzProperty::qzProperty(unsigned short tag, unsigned char v) : tag(tag), type(qzDT_qzBool) {
    value.boolean = v;
}

qzProperty::qzProperty(unsigned short tag, long v) : tag(tag), type(qzDT_long) {
    value.integer = v;
}

qzProperty::qzProperty(unsigned short tag, double v) : tag(tag), type(qzDT_double) {
    value.real = v;
}

qzProperty::qzProperty(unsigned short tag, const char* text, unsigned char owned)
    : tag(tag), type(qzDT_CharPtr), ownsText(owned) {
    value.text = text;
}

qzProperty::qzProperty(unsigned short tag, const qzStr& v) : tag(tag), type(qzDT_qzStr) {
    value.string = new qzStr(v);
}

qzProperty::qzProperty(unsigned short tag, void* pointer, Deleter deleter)
    : tag(tag), type(qzDT_VoidPtr), deleter(deleter) {
    value.pointer = pointer;
}

qzProperty::qzProperty(unsigned short tag, qzObj* object) : tag(tag), type(qzDT_ObjPtr) {
    value.object = object;
    if (object) object->addRef();
}

qzProperty::qzProperty(unsigned short tag, qzData* data) : tag(tag), type(qzDT_DataPtr) {
    value.data = data;
    if (data) data->addRef();
}

qzProperty::~qzProperty() { cleanup(); }

void qzProperty::cleanup() {
    if (type == qzDT_CharPtr) {
        setAsCharPtr(nullptr, 0);
    } else if (type == qzDT_VoidPtr) {
        setAsVoidPtr(nullptr, nullptr);
    } else if (type == qzDT_ObjPtr) {
        setAsObjPtr(nullptr);
    } else if (type == qzDT_DataPtr) {
        setAsData(nullptr);
    } else if (type == qzDT_qzStr) {
        delete value.string;
        value.string = nullptr;
    }
}

unsigned short qzProperty::getType() const {
    return type == qzDT_DataPtr && value.data ? value.data->getType() : type;
}

void qzProperty::setAsCharPtr(const char* text, unsigned char owned) {
    if (ownsText) qzRawFree(const_cast<char*>(value.text));
    value.text = text;
    ownsText = owned;
}

void qzProperty::setAsStr(const qzStr& v) { *value.string = v; }

void qzProperty::setAsVoidPtr(void* pointer, Deleter newDeleter) {
    void* const oldPointer = value.pointer;
    const Deleter oldDeleter = deleter;
    value.pointer = pointer;
    deleter = newDeleter;
    if (oldDeleter) oldDeleter(oldPointer);
}

void qzProperty::setAsObjPtr(qzObj* object) { replaceShared(value.object, object); }
void qzProperty::setAsData(qzData* data) { replaceShared(value.data, data); }

unsigned short qzProperty::allocNewTag(const char* name) {
    if (nextTag == noTag) return noTag;
    constructPropertyNames();
    qzStrArray& names = *qz_propertyNames;
    const unsigned short tag = nextTag++;
    while (names.length() <= tag)
        appendUnnamed(names);
    names[tag] = name;
    return tag;
}

unsigned short qzProperty::findTag(const char* name) {
    if (!qz_propertyNames) return noTag;
    const std::size_t length = std::strlen(name);
    for (unsigned tag = 0; tag < qz_propertyNames->length(); ++tag) {
        const qzStr& known = (*qz_propertyNames)[tag];
        if (known.length() == length && std::memcmp(known.data, name, length) == 0) {
            return static_cast<unsigned short>(tag);
        }
    }
    return noTag;
}

void qzProperty::constructPropertyNames() {
    if (!qz_propertyNames) qz_propertyNames = new qzStrArray;
}

void qzProperty::destroyPropertyNames() {
    delete qz_propertyNames;
    qz_propertyNames = nullptr;
}
