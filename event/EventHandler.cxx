// The events, their queue and its handler. They share a source because a queued
// value goes through all of them: the calls in between, and not what they do, would
// be most of its time.
//
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
#include <typeinfo>

#include "event/Data.h"
#include "event/EventTypes.h"
#include "event/InputChannel.h"
#include "event/MessageEvent.h"
#include "event/detail/BlockPool.h"
#include "event/detail/DoomedEvents.h"
#include "event/detail/EventInFlight.h"
#include "event/detail/ImmediateSend.h"

qzEventHandler* qz_theEventHandler = nullptr;

qzEventInFlight* qzEventInFlight::innermost;

namespace {

// Calls on an event, which are direct where it is known to be a qzMessageEvent and
// nothing derived from it, as nearly all are.

qzInputChannel* channelOf(qzEvent* event) { return event->getChannel(); }
qzInputChannel* channelOf(qzMessageEvent* event) { return event->qzMessageEvent::getChannel(); }

void deliver(qzEvent* event) { event->deliver(); }
void deliver(qzMessageEvent* event) { event->qzMessageEvent::deliver(); }

void destroy(qzEvent* event) { delete event; }
void destroy(qzMessageEvent* event) {
    if (!event) return;
    event->qzMessageEvent::~qzMessageEvent();
    qzMessageEvent::operator delete(event, sizeof *event);
}

} // namespace

// Events

unsigned qzEvent::nextSequenceNumber;

qzEvent::qzEvent(unsigned type)
    : next(nullptr), prev(nullptr), type(type), sequenceNumber(++nextSequenceNumber) {}

qzEvent::qzEvent(const qzEvent& other)
    : qzObj(other), next(nullptr), prev(nullptr), type(other.type),
      sequenceNumber(other.sequenceNumber) {}

qzEvent::~qzEvent() { leave(); }

void qzEvent::leave() {
    qzEventInFlight::destroyed(this);
    qzDoomedEvents::leaveQueue(this);
}

void qzEvent::dump(FILE* out) {
    std::fprintf(out, "Event: seq=%d type=%d\n", static_cast<int>(sequenceNumber),
                 static_cast<int>(type));
}

qzInputChannel* qzEvent::getChannel() { return nullptr; }

qzMessageEvent::qzMessageEvent(qzInputChannel* channel, qzData* data)
    : qzEvent(qzET_MessageEvent), channel(channel), data(data) {
    channel->addRef();
    data->addRef();
}

qzMessageEvent::qzMessageEvent(const qzMessageEvent& other)
    : qzEvent(other), channel(other.channel), data(other.data) {
    channel->addRef();
    data->addRef();
}

qzMessageEvent::~qzMessageEvent() {
    leave();
    if (channel->getPendingEvent() == this) channel->setPendingEvent(nullptr);
    channel->delRef();
    data->delRef();
}

// The receiver may destroy the event: both ends are held here as well.
void qzMessageEvent::deliver() {
    qzInputChannel* const to = channel;
    qzData* const value = data;
    to->setPendingEvent(nullptr);
    to->addRef();
    value->addRef();
    qzReceive(to, [value](qzInputChannel::Function function, void* object) {
        value->deliverTo(function, object);
    });
    value->delRef();
    to->delRef();
}

void qzMessageEvent::dump(FILE* out) { qzEvent::dump(out); }

qzInputChannel* qzMessageEvent::getChannel() { return channel; }

void* qzMessageEvent::operator new(std::size_t bytes) {
    return qzBlockPool<qzMessageEvent>::take(bytes);
}
void qzMessageEvent::operator delete(void* block, std::size_t bytes) {
    qzBlockPool<qzMessageEvent>::giveBack(block, bytes);
}

// The queue

void qzEventQueue::append(qzEvent* event) {
    assert(!event->prev && !event->next && head != event);
    event->prev = tail;
    (tail ? tail->next : head) = event;
    tail = event;
    ++count;
}

void qzEventQueue::insert(qzEvent* event) {
    assert(!event->prev && !event->next && head != event);
    event->next = head;
    (head ? head->prev : tail) = event;
    head = event;
    ++count;
}

void qzEventQueue::unlink(qzEvent* event) {
    assert(holds(event));
    qzDoomedEvents::unlinking(event);
    (event->prev ? event->prev->next : head) = event->next;
    (event->next ? event->next->prev : tail) = event->prev;
    event->next = event->prev = nullptr;
    --count;
}

qzEvent* qzEventQueue::get() {
    qzEvent* const event = head;
    if (event) take(event);
    return event;
}

// It is the caller's: the next send must not look for it in here.
template <class Event> void qzEventQueue::take(Event* event) {
    unlink(event);
    qzInputChannel* const channel = channelOf(event);
    if (channel && channel->getPendingEvent() == event) channel->setPendingEvent(nullptr);
}

void qzEventQueue::remove(qzEvent* event) {
    unlink(event);
    delete event;
}

unsigned char qzEventQueue::contains(const qzEvent* event) const {
    for (const qzEvent* queued = head; queued; queued = queued->next)
        if (queued == event) return 1;
    return 0;
}

// The handler

void qzEventHandler::postEvent(qzEvent* event, unsigned char urgent) {
    if (urgent) {
        insert(event);
    } else {
        append(event);
    }
}

namespace {

inline void post(qzEventHandler& handler, const qzOutputChannel& output, qzData* data,
                 qzObj::qzSendFlags how) {
    const bool known = how == qzObj::qzSF_Queued || how == qzObj::qzSF_Urgent;
    qzFanOut fanOut(output);
    fanOut.forEach([&](qzInputChannel* entry) {
        if (entry->coalesces()) qzSupersedePending(handler, entry, how);
        if (!known || !fanOut.stands()) return;
        qzMessageEvent* const message = new qzMessageEvent(entry, data);
        handler.postEvent(message, how == qzObj::qzSF_Urgent);
        if (entry->coalesces()) entry->setPendingEvent(message);
    });
}

} // namespace

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
        post(*this, *output, data, how);
    }
    if (data->references() - 1 > before) {
        data->delRef();
    } else {
        delete data;
    }
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

void qzEventHandler::distributeEvents() {
    for (unsigned budget = count; budget > 0 && head; --budget) {
        if (typeid(*head) == typeid(qzMessageEvent)) {
            distribute(static_cast<qzMessageEvent*>(head));
        } else {
            distribute(head);
        }
    }
}

template <class Event> void qzEventHandler::distribute(Event* event) {
    take(event);
    {
        const qzEventInFlight flight(event);
        deliver(event);
        event = static_cast<Event*>(flight.get());
    }
    destroy(event);
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
