// qzSeqRangeArray: an array of runs of numbers. See util/TypedArray.h.
//
// It cannot be transcribed.
#ifndef QZ_UTIL_SEQRANGEARRAY_H
#define QZ_UTIL_SEQRANGEARRAY_H

#include "util/SeqRange.h"
#include "util/TypedArray.h"

class QZ_EXPORT qzSeqRangeArray : public qzTypedArray<qzSeqRangeArray, qzSeqRange> {
  public:
    using qzTypedArray::qzTypedArray;
    ~qzSeqRangeArray() override;
};

extern template class qzTypedArray<qzSeqRangeArray, qzSeqRange>;

#endif
