// qzTypedData: the pattern of the data classes that hold a value.
//
//     class qzIntData : public qzTypedData<int, qzDT_int>
//
// T is the native type in which receivers get the value: by value, so that one
// of a qzStrData has a string of its own. code is the type's code.
#ifndef QZ_EVENT_TYPEDDATA_H
#define QZ_EVENT_TYPEDDATA_H

#include <utility>

#include "event/Data.h"
#include "event/DataTypes.h"

template <class T, unsigned short& code> class QZ_EXPORT qzTypedData : public qzData {
  public:
    explicit qzTypedData(T value) : qzData(code), value(std::move(value)) {}

    // Deliberate: not the type's name. Programs tell values apart by getType()
    // and show this as it stands. Pinned by qzData.OnlyVoidAndTextHaveTheirOwnName.
    const char* dataName() const override { return "TYPE"; }
    void deliverTo(void (*function)(), void* object) override {
        reinterpret_cast<void (*)(void*, T)>(function)(object, value);
    }
    void getValue(unsigned short, void* destination) override {
        *static_cast<T*>(destination) = value;
    }
    unsigned getSize() override { return sizeof value; }

  protected:
    T value;
};

#endif
