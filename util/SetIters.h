// qzSetIters: an array of the iterators attached to a set. See util/TypedArray.h.
//
// New slots are null. What the pointers point at is not owned. It cannot be transcribed.
#ifndef QZ_UTIL_SETITERS_H
#define QZ_UTIL_SETITERS_H

#include "util/TypedArray.h"

class QZ_EXPORT qzSetIter;

class QZ_EXPORT qzSetIters : public qzTypedArray<qzSetIters, qzSetIter*, qzPointerElements> {
  public:
    using qzTypedArray::qzTypedArray;
    ~qzSetIters() override;
};

extern template class qzTypedArray<qzSetIters, qzSetIter*, qzPointerElements>;

#endif
