// Counted: the older reference-counted base, kept for the classes built on it.
//
// New classes derive from qzRCObj. The rule is the same: a count starts at 0
// and the release that takes it below 1 destroys the object, so a delRef() on
// an object that nobody holds destroys it, too.
#ifndef QZ_UTIL_COUNTED_H
#define QZ_UTIL_COUNTED_H

#include "util/Export.h"

class QZ_EXPORT Counted {
  public:
    Counted() : refCount(0) {}
    Counted(const Counted&) : refCount(0) {}
    Counted& operator=(const Counted&) { return *this; }

    virtual ~Counted();

    void addRef() { ++refCount; }
    void delRef() {
        if (--refCount < 1) delete this;
    }

  protected:
    int refCount;
};

#endif
