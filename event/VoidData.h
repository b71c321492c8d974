// qzVoidData: no value; what is sent is the event itself.
#ifndef QZ_EVENT_VOIDDATA_H
#define QZ_EVENT_VOIDDATA_H

#include "event/Data.h"

class QZ_EXPORT qzVoidData : public qzData {
  public:
    qzVoidData();
    ~qzVoidData() override;

    const char* dataName() const override;
    void deliverTo(void (*function)(), void* object) override; // function(object)
    void getValue(unsigned short type, void* destination) override;
    unsigned getSize() override;
};

#endif
