// qzDoubleData: a double to be sent. See event/TypedData.h.
#ifndef QZ_EVENT_DOUBLEDATA_H
#define QZ_EVENT_DOUBLEDATA_H

#include "event/TypedData.h"

class QZ_EXPORT qzDoubleData : public qzTypedData<double, qzDT_double> {
  public:
    using qzTypedData::qzTypedData;
    ~qzDoubleData() override;
};

extern template class qzTypedData<double, qzDT_double>;

#endif
