// qzCharPtrData: a text to be sent. See event/TypedData.h.
//
// Ownership: adopts the text, which came from malloc. Receivers and getValue()
//     get the very pointer, good as long as this object.
#ifndef QZ_EVENT_CHARPTRDATA_H
#define QZ_EVENT_CHARPTRDATA_H

#include "event/TypedData.h"

class QZ_EXPORT qzCharPtrData : public qzTypedData<char*, qzDT_CharPtr> {
  public:
    using qzTypedData::qzTypedData;
    ~qzCharPtrData() override;

    const char* dataName() const override;
};

extern template class qzTypedData<char*, qzDT_CharPtr>;

#endif
