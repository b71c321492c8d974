// qzDictBuckets: an array of chain heads of a dictionary. See util/TypedArray.h.
//
// New slots are null. What the pointers point at is not owned. It cannot be transcribed.
#ifndef QZ_UTIL_DICTBUCKETS_H
#define QZ_UTIL_DICTBUCKETS_H

#include "util/DictBucket.h"
#include "util/TypedArray.h"

class QZ_EXPORT qzDictBuckets
    : public qzTypedArray<qzDictBuckets, qzDictBucket*, qzPointerElements> {
  public:
    using qzTypedArray::qzTypedArray;
    ~qzDictBuckets() override;
};

extern template class qzTypedArray<qzDictBuckets, qzDictBucket*, qzPointerElements>;

#endif
