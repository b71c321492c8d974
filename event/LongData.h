// qzLongData: a long to be sent. See event/TypedData.h.
#ifndef QZ_EVENT_LONGDATA_H
#define QZ_EVENT_LONGDATA_H

#include "event/TypedData.h"

class QZ_EXPORT qzLongData : public qzTypedData<long, qzDT_long> {
  public:
    using qzTypedData::qzTypedData;
    ~qzLongData() override;
};

extern template class qzTypedData<long, qzDT_long>;

#endif
