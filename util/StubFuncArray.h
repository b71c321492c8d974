// qzStubFuncArray: an array of pointers to functions. See util/TypedArray.h.
//
// It cannot be transcribed.
#ifndef QZ_UTIL_STUBFUNCARRAY_H
#define QZ_UTIL_STUBFUNCARRAY_H

#include "util/TypedArray.h"

// A function without a signature; whoever calls it knows what it takes.
using qzStubFunc = void (*)();

class QZ_EXPORT qzStubFuncArray : public qzTypedArray<qzStubFuncArray, qzStubFunc> {
  public:
    using qzTypedArray::qzTypedArray;
    ~qzStubFuncArray() override;
};

extern template class qzTypedArray<qzStubFuncArray, qzStubFunc>;

#endif
