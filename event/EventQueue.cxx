#include "event/EventQueue.h"

#include <cassert>

#include "event/InputChannel.h"
#include "event/MessageEvent.h"
#include "event/detail/DoomedEvents.h"

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
    if (!event) return nullptr;
    unlink(event);
    // It is the caller's: the next send must not look for it in here.
    qzInputChannel* const channel = event->getChannel();
    if (channel && channel->getPendingEvent() == event) channel->setPendingEvent(nullptr);
    return event;
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
