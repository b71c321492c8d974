// qzSetBuckets: an array of chain heads of a set. See util/TypedArray.h.
//
// New slots are null. What the pointers point at is not owned. It cannot be transcribed.
#ifndef QZ_UTIL_SETBUCKETS_H
#define QZ_UTIL_SETBUCKETS_H

#include "util/SetBucket.h"
#include "util/TypedArray.h"

class QZ_EXPORT qzSetBuckets : public qzTypedArray<qzSetBuckets, qzSetBucket*, qzPointerElements> {
  public:
    using qzTypedArray::qzTypedArray;
    ~qzSetBuckets() override;
};

extern template class qzTypedArray<qzSetBuckets, qzSetBucket*, qzPointerElements>;

#endif
