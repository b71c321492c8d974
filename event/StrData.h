// qzStrData: a string to be sent. See event/TypedData.h.
#ifndef QZ_EVENT_STRDATA_H
#define QZ_EVENT_STRDATA_H

#include "event/TypedData.h"
#include "util/Str.h"

class QZ_EXPORT qzStrData : public qzTypedData<qzStr, qzDT_qzStr> {
  public:
    using qzTypedData::qzTypedData;
    ~qzStrData() override;
};

extern template class qzTypedData<qzStr, qzDT_qzStr>;

#endif
