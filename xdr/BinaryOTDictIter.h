// qzBinaryOTDictIter: walks a qzBinaryOTDict. See util/DictIter.h.
#ifndef QZ_XDR_BINARYOTDICTITER_H
#define QZ_XDR_BINARYOTDICTITER_H

#include "xdr/BinaryOTDict.h"

class qzBinaryOTDictIter : public qzTypedDictIter<qzBinaryOTDict> {
  public:
    using qzTypedDictIter::operator=;
    using qzTypedDictIter::qzTypedDictIter;
};

#endif
