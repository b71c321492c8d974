// qzIntData: an int to be sent. See event/TypedData.h.
#ifndef QZ_EVENT_INTDATA_H
#define QZ_EVENT_INTDATA_H

#include "event/TypedData.h"

class QZ_EXPORT qzIntData : public qzTypedData<int, qzDT_int> {
  public:
    using qzTypedData::qzTypedData;
    ~qzIntData() override;
};

extern template class qzTypedData<int, qzDT_int>;

#endif
