// qzDictIters: an array of the iterators attached to a dictionary. See util/TypedArray.h.
//
// New slots are null. What the pointers point at is not owned. It cannot be transcribed.
#ifndef QZ_UTIL_DICTITERS_H
#define QZ_UTIL_DICTITERS_H

#include "util/TypedArray.h"

class QZ_EXPORT qzDictIter;

class QZ_EXPORT qzDictIters : public qzTypedArray<qzDictIters, qzDictIter*, qzPointerElements> {
  public:
    using qzTypedArray::qzTypedArray;
    ~qzDictIters() override;
};

extern template class qzTypedArray<qzDictIters, qzDictIter*, qzPointerElements>;

#endif
