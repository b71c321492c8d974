// qzRCObj: root of everything that is shared by reference count.
//
// A count starts at 0; every holder adds one, and the holder whose release
// takes it below 1 destroys the object. Objects on the stack or inside others
// simply never have a holder.
//
// Layout: virtual table, then the count: 8 bytes on i386.
#ifndef QZ_UTIL_RCOBJ_H
#define QZ_UTIL_RCOBJ_H

#include "util/Export.h"

class QZ_EXPORT qzRCObj {
  public:
    qzRCObj() : refCount(0) {}
    // References are held on an object, not on its value: a copy has none yet,
    // and assignment leaves both counts alone.
    qzRCObj(const qzRCObj&) : refCount(0) {}
    qzRCObj& operator=(const qzRCObj&) { return *this; }

    virtual ~qzRCObj();

    void addRef() { ++refCount; }
    void delRef() {
        if (--refCount < 1) delete this;
    }
    int references() const { return refCount; }

  protected:
    int refCount;
};

static_assert(sizeof(void*) != 4 || sizeof(qzRCObj) == 8, "every counted object starts with this");

#endif
