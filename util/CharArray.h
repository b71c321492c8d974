// qzCharArray: an array of characters. See util/TypedArray.h and util/XDRArray.h.
#ifndef QZ_UTIL_CHARARRAY_H
#define QZ_UTIL_CHARARRAY_H

#include "util/XDRArray.h"

extern QZ_EXPORT qzTypeObj qzCharArray_type;

class QZ_EXPORT qzCharArray : public qzXDRArray<qzCharArray, char, qzCharArray_type> {
  public:
    using qzXDRArray::qzXDRArray;
    ~qzCharArray() override;
};

extern template class qzTypedArray<qzCharArray, char>;
extern template class qzXDRArray<qzCharArray, char, qzCharArray_type>;

#endif
