// qzVoidPtrDictIter: walks a qzVoidPtrDict. See util/DictIter.h.
#ifndef QZ_UTIL_VOIDPTRDICTITER_H
#define QZ_UTIL_VOIDPTRDICTITER_H

#include "util/VoidPtrDict.h"

class qzVoidPtrDictIter : public qzTypedDictIter<qzVoidPtrDict> {
  public:
    using qzTypedDictIter::operator=;
    using qzTypedDictIter::qzTypedDictIter;
};

#endif
