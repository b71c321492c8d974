#include "event/Obj.h"

#include <cstring>

#include "event/BoolData.h"
#include "event/CharPtrData.h"
#include "event/DoubleData.h"
#include "event/EventHandler.h"
#include "event/FloatData.h"
#include "event/IntData.h"
#include "event/LongData.h"
#include "event/Property.h"
#include "event/VoidData.h"
#include "event/detail/BlockPool.h"
#include "event/detail/ImmediateSend.h"
#include "util/Fatal.h"
#include "util/VoidPtrArray.h"
#include "util/detail/RawMemory.h"

// The inputs go first: what the other properties call back must not reach this
// object any more. What is attached meanwhile goes as well.
void qzObj::destroyProperties() {
    addRef(); // so that releases in here do not destroy it again
    while (getNumberOfProperties()) {
        if (const qzProperty* const channels = findChannels(inputs)) {
            removeProperty(channels->getTag());
        }
        removeAllProperties();
    }
    delete properties;
}

void qzObj::subClassMustDefine(const char* method) const {
    qzFatal("%s: Sub class must define method \"%s\"", className(), method);
}

int qzObj::compare(const qzObj*) const {
    subClassMustDefine("compare");
    return 0;
}

// Sending

void qzObj::sendData(qzOutputChannel* output, qzData* data, qzSendFlags how) {
    qz_theEventHandler->postMessage(output, data, how);
}

// Boxed only if it has to wait.
template <class Data, class... Value>
void qzObj::sendValue(qzOutputChannel* output, qzSendFlags how, Value... value) {
    if (how != qzSF_Immediate) {
        void* const block = qzBlockPool<qzData>::take(sizeof(Data)); // as operator new does
        return qz_theEventHandler->postMessage(output, ::new (block) Data(value...), how);
    }
    qzDeliverNow(*qz_theEventHandler, *output, [=](void (*function)(), void* object) {
        reinterpret_cast<void (*)(void*, Value...)>(function)(object, value...);
    });
}

void qzObj::sendVoid(qzOutputChannel* output, qzSendFlags how) {
    sendValue<qzVoidData>(output, how);
}

void qzObj::sendBool(qzOutputChannel* output, unsigned char value, qzSendFlags how) {
    sendValue<qzBoolData>(output, how, value);
}

void qzObj::sendInt(qzOutputChannel* output, int value, qzSendFlags how) {
    sendValue<qzIntData>(output, how, value);
}

void qzObj::sendLong(qzOutputChannel* output, long value, qzSendFlags how) {
    sendValue<qzLongData>(output, how, value);
}

void qzObj::sendFloat(qzOutputChannel* output, float value, qzSendFlags how) {
    sendValue<qzFloatData>(output, how, value);
}

void qzObj::sendDouble(qzOutputChannel* output, double value, qzSendFlags how) {
    sendValue<qzDoubleData>(output, how, value);
}

void qzObj::sendCharPtr(qzOutputChannel* output, const char* text, qzSendFlags how) {
    const std::size_t bytes = std::strlen(text) + 1;
    char* const copy = static_cast<char*>(qzRawAlloc(bytes));
    qzRawMove(copy, text, bytes);
    sendData(output, new qzCharPtrData(copy), how);
}
