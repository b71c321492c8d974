// qzFloatData: a float to be sent. See event/TypedData.h.
#ifndef QZ_EVENT_FLOATDATA_H
#define QZ_EVENT_FLOATDATA_H

#include "event/TypedData.h"

class QZ_EXPORT qzFloatData : public qzTypedData<float, qzDT_float> {
  public:
    using qzTypedData::qzTypedData;
    ~qzFloatData() override;
};

extern template class qzTypedData<float, qzDT_float>;

#endif
