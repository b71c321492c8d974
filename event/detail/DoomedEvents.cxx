#include "event/detail/DoomedEvents.h"

#include "event/InputChannel.h"
#include "event/MessageEvent.h"

qzDoomedEvents* qzDoomedEvents::innermost;

qzDoomedEvents::~qzDoomedEvents() {
    while (qzEvent* event = get())
        delete event;
    innermost = outer;
}

void qzDoomedEvents::take(qzEventQueue& from, qzEventHandler::Predicate predicate, void* arg) {
    for (next = from.head; (current = next);) {
        next = current->next;
        if (!predicate(current, arg) || !current) continue;
        qzEvent* const event = current;
        from.unlink(event);
        append(event);
        // A send in between must not look for it in the queue.
        qzInputChannel* const channel = event->getChannel();
        if (channel && channel->getPendingEvent() == event) channel->setPendingEvent(nullptr);
    }
}

void qzDoomedEvents::stepOver(const qzEvent* event) {
    for (qzDoomedEvents* walk = innermost; walk; walk = walk->outer) {
        if (walk->next == event) walk->next = event->next;
        if (walk->current == event) walk->current = nullptr;
    }
}

void qzDoomedEvents::findAndUnlink(qzEvent* event) {
    const qzEvent* first = event;
    while (first->prev)
        first = first->prev;
    if (qz_theEventHandler && qz_theEventHandler->head == first) {
        return qz_theEventHandler->unlink(event);
    }
    for (qzDoomedEvents* doomed = innermost; doomed; doomed = doomed->outer)
        if (doomed->head == first) return doomed->unlink(event);
}
