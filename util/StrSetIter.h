// qzStrSetIter: walks a qzStrSet. See util/SetIter.h.
#ifndef QZ_UTIL_STRSETITER_H
#define QZ_UTIL_STRSETITER_H

#include "util/StrSet.h"

class QZ_EXPORT qzStrSetIter : public qzTypedSetIter<qzStrSet> {
  public:
    using qzTypedSetIter::operator=;
    using qzTypedSetIter::qzTypedSetIter;
    ~qzStrSetIter() override;
};

extern template class qzTypedSetIter<qzStrSet>;

#endif
