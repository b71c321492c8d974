// qzProperty: a named, typed attribute of a qzObj.
//
// Names are interned once per process as small numbers, their tags. The value's
// type is fixed by the constructor; the caller reads and writes with the
// operations of that type, which check and convert nothing.
//
// Ownership: shared by reference count; one property may be attached to several
//     objects. Holds a reference on an object or data value, and a copy of a
//     string; a text marked as owned came from malloc and is freed, a pointer
//     with a deleter is given to that.
// Trusted: the operation matches the type. A text or pointer that is stored
//     again over itself must not be owned.
// Cost: a tag is found by a walk over all names: look it up once and keep it.
#ifndef QZ_EVENT_PROPERTY_H
#define QZ_EVENT_PROPERTY_H

#include "util/RCObj.h"

class qzData;
class qzObj;
class qzStr;
class qzStrArray;

class QZ_EXPORT qzProperty : public qzRCObj {
  public:
    using Deleter = void (*)(void*);
    static constexpr unsigned short noTag = 0xFFFF;

    qzProperty(unsigned short tag, unsigned char value);
    qzProperty(unsigned short tag, long value);
    qzProperty(unsigned short tag, double value);
    qzProperty(unsigned short tag, const char* text, unsigned char owned); // the very pointer
    qzProperty(unsigned short tag, const qzStr& value);
    qzProperty(unsigned short tag, void* pointer, Deleter deleter); // null for no deleter
    qzProperty(unsigned short tag, qzObj* object);
    qzProperty(unsigned short tag, qzData* data);
    qzProperty(const qzProperty&) = delete;
    qzProperty& operator=(const qzProperty&) = delete;
    ~qzProperty() override;

    unsigned short getTag() const { return tag; }
    // The type of the value. Deliberate: for a data value it is that value's own, so
    // that callers need not care which way it was stored. Pinned by
    // qzProperty.HoldsOneReferenceOnWhatItShares.
    unsigned short getType() const;

    unsigned char getAsBool() const { return value.boolean; }
    long getAsLong() const { return value.integer; }
    double getAsDouble() const { return value.real; }
    const char* getAsCharPtr() const { return value.text; }
    const qzStr& getAsStr() const { return *value.string; }
    void* getAsVoidPtr() const { return value.pointer; }
    qzObj* getAsObjPtr() const { return value.object; }
    qzData* getAsData() const { return value.data; }

    // The new value is in place before the old one goes: a deleter or destructor
    // may use this property, or release it.
    void setAsBool(unsigned char v) { value.boolean = v; }
    void setAsLong(long v) { value.integer = v; }
    void setAsDouble(double v) { value.real = v; }
    void setAsCharPtr(const char* text, unsigned char owned);
    void setAsStr(const qzStr& v);
    void setAsVoidPtr(void* pointer, Deleter deleter);
    // Deliberate: storing what is held already, when nobody else holds it,
    // destroys it and leaves null. A store always gives up the old reference, so
    // callers hold what they pass. Pinned by
    // qzProperty.StoringItsOnlyReferenceAgainDestroysTheObject.
    void setAsObjPtr(qzObj* object);
    void setAsData(qzData* data);

    // Gives up the value; the destructor does this.
    void cleanup();

    // A new tag for the name; the first one is 0; noTag when all are taken.
    // Deliberate: also for a name that has a tag, which lookups go on to find.
    // Modules draw tags of their own under any name; look with findTag() first to
    // share one. Pinned by qzProperty.TagsCountFromZeroAndAreNotReused.
    static unsigned short allocNewTag(const char* name);
    // The first tag of the name, or noTag.
    static unsigned short findTag(const char* name);

    // For start-up and the end of a program. A table made again knows none of the
    // names before it; their tags are not given out again.
    static void constructPropertyNames();
    static void destroyPropertyNames();

    static qzStrArray* qz_propertyNames; // by tag; null until start-up
    static unsigned short nextTag;

  protected:
    unsigned short tag;
    unsigned short type;
    union {
        unsigned char boolean;
        long integer;
        double real;
        const char* text;
        qzStr* string;
        void* pointer;
        qzObj* object;
        qzData* data;
    } value;
    union {
        unsigned char ownsText;
        Deleter deleter = nullptr;
    };
};

static_assert(sizeof(void*) != 4 || sizeof(qzProperty) == 24,
              "tag, type, a value of eight bytes, and what frees it");

#endif
