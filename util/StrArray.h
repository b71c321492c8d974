// qzStrArray: an array of strings. See util/TypedArray.h and util/XDRArray.h.
//
// Every element is a string of its own; find() and qsort() go by strcmp order.
// Elements are transcribed one by one through qzStr::xdr; strings of any other
// element size than their own cannot be read.
#ifndef QZ_UTIL_STRARRAY_H
#define QZ_UTIL_STRARRAY_H

#include "util/Str.h"
#include "util/XDRArray.h"

extern QZ_EXPORT qzTypeObj qzStrArray_type;

class QZ_EXPORT qzStrArray
    : public qzXDRArray<qzStrArray, qzStr, qzStrArray_type, qzObjectElements<qzStr>> {
  public:
    using qzXDRArray::qzXDRArray;
    ~qzStrArray() override;

    using qzXDRArray::xdr;
    unsigned char xdr(qzTranscriber& t) override;

    // qzArray's order, also of equal strings. Cost: takes a block of 16 bytes a
    // string, where there is one, and then seldom looks at the texts.
    void qsort() { qsort(0, length()); }
    void qsort(unsigned start, unsigned count);

  private:
    unsigned char read(qzTranscriber& t);
};

extern template class qzObjectElements<qzStr>;
extern template class qzTypedArray<qzStrArray, qzStr, qzObjectElements<qzStr>>;
extern template class qzXDRArray<qzStrArray, qzStr, qzStrArray_type, qzObjectElements<qzStr>>;

#endif
