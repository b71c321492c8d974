// The typed arrays: their type objects, and the one place where each member of
// the pattern is compiled.
#include "util/BoolArray.h"
#include "util/CharArray.h"
#include "util/DictBuckets.h"
#include "util/DictIters.h"
#include "util/DoubleArray.h"
#include "util/FloatArray.h"
#include "util/IntArray.h"
#include "util/LongArray.h"
#include "util/SeqRangeArray.h"
#include "util/SetBuckets.h"
#include "util/SetIters.h"
#include "util/ShortArray.h"
#include "util/StrArray.h"
#include "util/StubFuncArray.h"
#include "util/UnsignedCharArray.h"
#include "util/UnsignedLongArray.h"
#include "util/UnsignedShortArray.h"
#include "util/VoidPtrArray.h"

#include <climits>

#include "util/detail/RawMemory.h"

static_assert(sizeof(qzIntArray) == sizeof(qzArray) && sizeof(qzStrArray) == sizeof(qzArray) &&
                  sizeof(qzVoidPtrArray) == sizeof(qzArray),
              "typed arrays add no fields");

// All of these register as "ARRAY" and the last one registered is what a reader
// creates. They stand in one file because only there is the order of
// construction fixed: it does not depend on the linker.
qzTypeObj qzBoolArray_type("ARRAY", 1, qzBoolArray::newInstance, qzBoolArray::deleteInstance,
                           qzBoolArray::xdr);
qzTypeObj qzCharArray_type("ARRAY", 1, qzCharArray::newInstance, qzCharArray::deleteInstance,
                           qzCharArray::xdr);
qzTypeObj qzDoubleArray_type("ARRAY", 1, qzDoubleArray::newInstance, qzDoubleArray::deleteInstance,
                             qzDoubleArray::xdr);
qzTypeObj qzFloatArray_type("ARRAY", 1, qzFloatArray::newInstance, qzFloatArray::deleteInstance,
                            qzFloatArray::xdr);
qzTypeObj qzIntArray_type("ARRAY", 1, qzIntArray::newInstance, qzIntArray::deleteInstance,
                          qzIntArray::xdr);
qzTypeObj qzLongArray_type("ARRAY", 1, qzLongArray::newInstance, qzLongArray::deleteInstance,
                           qzLongArray::xdr);
qzTypeObj qzShortArray_type("ARRAY", 1, qzShortArray::newInstance, qzShortArray::deleteInstance,
                            qzShortArray::xdr);
qzTypeObj qzStrArray_type("ARRAY", 1, qzStrArray::newInstance, qzStrArray::deleteInstance,
                          qzStrArray::xdr);
qzTypeObj qzUnsignedCharArray_type("ARRAY", 1, qzUnsignedCharArray::newInstance,
                                   qzUnsignedCharArray::deleteInstance, qzUnsignedCharArray::xdr);
qzTypeObj qzUnsignedLongArray_type("ARRAY", 1, qzUnsignedLongArray::newInstance,
                                   qzUnsignedLongArray::deleteInstance, qzUnsignedLongArray::xdr);
qzTypeObj qzUnsignedShortArray_type("ARRAY", 1, qzUnsignedShortArray::newInstance,
                                    qzUnsignedShortArray::deleteInstance,
                                    qzUnsignedShortArray::xdr);

qzPointerElements::~qzPointerElements() = default;

void qzPointerElements::createElements(void* p, unsigned nbytes) { qzRawZero(p, nbytes); }

bool qzPointerElements::tryReplace(unsigned n) {
    if (n > UINT_MAX / elemSize) return false;
    void* block = qzRawTryZeroed(n * elemSize);
    if (!block && n) return false;
    qzRawFree(data);
    data = block;
    allocated = used = n * elemSize;
    return true;
}

qzBoolArray::~qzBoolArray() = default;
qzCharArray::~qzCharArray() = default;
qzDoubleArray::~qzDoubleArray() = default;
qzFloatArray::~qzFloatArray() = default;
qzIntArray::~qzIntArray() = default;
qzLongArray::~qzLongArray() = default;
qzShortArray::~qzShortArray() = default;
qzUnsignedCharArray::~qzUnsignedCharArray() = default;
qzUnsignedLongArray::~qzUnsignedLongArray() = default;
qzUnsignedShortArray::~qzUnsignedShortArray() = default;
qzVoidPtrArray::~qzVoidPtrArray() = default;
qzStubFuncArray::~qzStubFuncArray() = default;
qzDictBuckets::~qzDictBuckets() = default;
qzDictIters::~qzDictIters() = default;
qzSetBuckets::~qzSetBuckets() = default;
qzSetIters::~qzSetIters() = default;
qzSeqRangeArray::~qzSeqRangeArray() = default;

template class qzTypedArray<qzBoolArray, unsigned char>;
template class qzXDRArray<qzBoolArray, unsigned char, qzBoolArray_type>;
template class qzTypedArray<qzCharArray, char>;
template class qzXDRArray<qzCharArray, char, qzCharArray_type>;
template class qzTypedArray<qzDoubleArray, double>;
template class qzXDRArray<qzDoubleArray, double, qzDoubleArray_type>;
template class qzTypedArray<qzFloatArray, float>;
template class qzXDRArray<qzFloatArray, float, qzFloatArray_type>;
template class qzTypedArray<qzIntArray, int>;
template class qzXDRArray<qzIntArray, int, qzIntArray_type>;
template class qzTypedArray<qzLongArray, long>;
template class qzXDRArray<qzLongArray, long, qzLongArray_type>;
template class qzTypedArray<qzShortArray, short>;
template class qzXDRArray<qzShortArray, short, qzShortArray_type>;
template class qzObjectElements<qzStr>;
template class qzTypedArray<qzStrArray, qzStr, qzObjectElements<qzStr>>;
template class qzXDRArray<qzStrArray, qzStr, qzStrArray_type, qzObjectElements<qzStr>>;
template class qzTypedArray<qzUnsignedCharArray, unsigned char>;
template class qzXDRArray<qzUnsignedCharArray, unsigned char, qzUnsignedCharArray_type>;
template class qzTypedArray<qzUnsignedLongArray, unsigned long>;
template class qzXDRArray<qzUnsignedLongArray, unsigned long, qzUnsignedLongArray_type>;
template class qzTypedArray<qzUnsignedShortArray, unsigned short>;
template class qzXDRArray<qzUnsignedShortArray, unsigned short, qzUnsignedShortArray_type>;
template class qzTypedArray<qzVoidPtrArray, void*, qzPointerElements>;
template class qzTypedArray<qzStubFuncArray, qzStubFunc>;
template class qzTypedArray<qzDictBuckets, qzDictBucket*, qzPointerElements>;
template class qzTypedArray<qzDictIters, qzDictIter*, qzPointerElements>;
template class qzTypedArray<qzSetBuckets, qzSetBucket*, qzPointerElements>;
template class qzTypedArray<qzSetIters, qzSetIter*, qzPointerElements>;
template class qzTypedArray<qzSeqRangeArray, qzSeqRange>;
