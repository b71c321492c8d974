// qzBoolData: a truth value to be sent. See event/TypedData.h.
#ifndef QZ_EVENT_BOOLDATA_H
#define QZ_EVENT_BOOLDATA_H

#include "event/TypedData.h"

class QZ_EXPORT qzBoolData : public qzTypedData<unsigned char, qzDT_qzBool> {
  public:
    using qzTypedData::qzTypedData;
    ~qzBoolData() override;
};

extern template class qzTypedData<unsigned char, qzDT_qzBool>;

#endif
