// qzStrArrayData: an array of strings to be sent. See event/TypedData.h.
//
// Every copy, also the one that getValue() makes over the elements at its
// destination, has strings of its own.
#ifndef QZ_EVENT_STRARRAYDATA_H
#define QZ_EVENT_STRARRAYDATA_H

#include "event/TypedData.h"
#include "util/StrArray.h"

class QZ_EXPORT qzStrArrayData : public qzTypedData<qzStrArray, qzDT_qzStrArray> {
  public:
    using qzTypedData::qzTypedData;
    ~qzStrArrayData() override;
};

extern template class qzTypedData<qzStrArray, qzDT_qzStrArray>;

#endif
