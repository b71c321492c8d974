#include "util/RPtr_base.h"

RPtr_base& RPtr_base::operator=(const RPtr_base& other) {
    // The new reference comes first: both may hold the same object, and the
    // release may run code that changes `other`.
    Counted* previous = object;
    object = other.object;
    if (object) object->addRef();
    if (previous) previous->delRef();
    return *this;
}
