// What makes it safe to call receivers and destructors from here:
//
// (1) A fan-out is a qzFanOut, which the channel keeps right and which keeps the
//     entry whose turn it is; the data is held, and each entry is asked whether it
//     still stands after everything that may have called back.
// (2) An event leaves the queue before it is delivered or destroyed, and its
//     channel forgets it as pending before it is destroyed.
// (3) A purge takes out all its events, into a qzDoomedEvents, before the first
//     one is destroyed: none of them is delivered by what the others call back.
// (4) An event that is destroyed leaves the queue it is in by itself, also the
//     doomed ones, and one in delivery is a qzEventInFlight: nobody destroys it
//     again.
#include "event/EventHandler.h"

#include <cassert>

#include "event/Data.h"
#include "event/EventTypes.h"
#include "event/MessageEvent.h"
#include "event/detail/DoomedEvents.h"
#include "event/detail/EventInFlight.h"
#include "event/detail/ImmediateSend.h"

qzEventHandler* qz_theEventHandler = nullptr;

qzEventInFlight* qzEventInFlight::innermost;

void qzEventHandler::postEvent(qzEvent* event, unsigned char urgent) {
    if (urgent) {
        insert(event);
    } else {
        append(event);
    }
}

void qzEventHandler::postMessage(qzOutputChannel* output, qzData* data, qzObj::qzSendFlags how) {
    assert(data || output->getNumberOfConnections() == 0);
    if (!data) return;
    const unsigned before = data->references();
    data->addRef();
    if (how == qzObj::qzSF_Immediate) {
        qzDeliverNow(*this, *output, [data](qzInputChannel::Function function, void* object) {
            data->deliverTo(function, object);
        });
    } else {
        post(*output, data, how);
    }
    if (data->references() - 1 > before) {
        data->delRef();
    } else {
        delete data;
    }
}

void qzEventHandler::post(const qzOutputChannel& output, qzData* data, qzObj::qzSendFlags how) {
    const bool known = how == qzObj::qzSF_Queued || how == qzObj::qzSF_Urgent;
    qzFanOut fanOut(output);
    fanOut.forEach([&](qzInputChannel* entry) {
        if (entry->coalesces()) qzSupersedePending(*this, entry, how);
        if (known && fanOut.stands()) postTo(entry, data, how);
    });
}

// A message that the destruction of the old one sends here is superseded, too,
// when another one is about to be queued; it is newer than an immediate send.
void qzSupersedePending(qzEventQueue& queue, qzInputChannel* entry, qzObj::qzSendFlags how) {
    while (qzMessageEvent* old = entry->getPendingEvent()) {
        entry->setPendingEvent(nullptr);
        queue.remove(old);
        if (how != qzObj::qzSF_Queued && how != qzObj::qzSF_Urgent) return;
    }
}

void qzEventHandler::postTo(qzInputChannel* entry, qzData* data, qzObj::qzSendFlags how) {
    qzMessageEvent* const message = new qzMessageEvent(entry, data);
    postEvent(message, how == qzObj::qzSF_Urgent);
    if (entry->coalesces()) entry->setPendingEvent(message);
}

void qzEventHandler::distributeEvents() {
    for (unsigned budget = count; budget > 0; --budget) {
        qzEvent* const event = get();
        if (!event) return;
        qzEventInFlight flight(event);
        event->deliver();
        delete flight.get();
    }
}

void qzEventHandler::removeEvents(Predicate predicate, void* arg) {
    qzDoomedEvents doomed;
    doomed.take(*this, predicate, arg);
}

void qzEventHandler::removeMessageEvents(qzInputChannel* channel) {
    removeEvents(zapMessageEvents, channel);
}

unsigned char zapMessageEvents(qzEvent* event, void* channel) {
    qzInputChannel* const wanted = static_cast<qzInputChannel*>(channel);
    if (event->getType() != qzET_MessageEvent || event->getChannel() != wanted) return 0;
    if (wanted->getPendingEvent() == event) wanted->setPendingEvent(nullptr);
    return 1;
}
