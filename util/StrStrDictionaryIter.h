// qzStrStrDictionaryIter: walks a qzStrStrDictionary. See util/DictIter.h.
#ifndef QZ_UTIL_STRSTRDICTIONARYITER_H
#define QZ_UTIL_STRSTRDICTIONARYITER_H

#include "util/StrStrDictionary.h"

class qzStrStrDictionaryIter : public qzTypedDictIter<qzStrStrDictionary> {
  public:
    using qzTypedDictIter::operator=;
    using qzTypedDictIter::qzTypedDictIter;
};

#endif
