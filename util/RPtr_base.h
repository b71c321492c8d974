// RPtr_base: the untyped part of a counted pointer to a Counted.
//
// Ownership: holds one reference on its object, taken when it is given the
// object and released when it lets go. Null is held without any effect.
#ifndef QZ_UTIL_RPTR_BASE_H
#define QZ_UTIL_RPTR_BASE_H

#include "util/Counted.h"

class QZ_EXPORT RPtr_base {
  public:
    RPtr_base(Counted* object = nullptr) : object(object) {
        if (object) object->addRef();
    }
    RPtr_base(const RPtr_base& other) : RPtr_base(other.object) {}
    RPtr_base& operator=(const RPtr_base& other);
    ~RPtr_base() {
        if (object) object->delRef();
    }

  protected:
    Counted* object;
};

#endif
