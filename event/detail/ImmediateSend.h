// The fan-out of an immediate send, and what all sends do with old messages.
#ifndef QZ_EVENT_DETAIL_IMMEDIATESEND_H
#define QZ_EVENT_DETAIL_IMMEDIATESEND_H

#include "event/DataTypes.h"
#include "event/EventHandler.h"
#include "event/detail/FanOut.h"

// The one place that calls receivers. What arrives at a void input is no more than
// that: its receiver takes no value.
template <class Deliver> void qzReceive(const qzInputChannel* entry, Deliver deliver) {
    if (entry->getType() == qzDT_void) {
        reinterpret_cast<void (*)(void*)>(entry->getFunction())(entry->getObject());
    } else {
        deliver(entry->getFunction(), entry->getObject());
    }
}

// Destroys the message that the coalescing entry has not received yet.
void qzSupersedePending(qzEventQueue& queue, qzInputChannel* entry, qzObj::qzSendFlags how);

// Calls deliver(function, object) for each entry that is connected when its turn
// comes. A value in its native form goes through here without ever being boxed:
// receivers do not get to see the box.
template <class Deliver>
void qzDeliverNow(qzEventQueue& queue, const qzOutputChannel& output, Deliver deliver) {
    qzFanOut fanOut(output);
    fanOut.forEach([&](qzInputChannel* entry) {
        if (__builtin_expect(entry->coalesces(), 0)) {
            qzSupersedePending(queue, entry, qzObj::qzSF_Immediate);
            if (!fanOut.stands()) return;
        }
        qzReceive(entry, deliver);
    });
}

#endif
