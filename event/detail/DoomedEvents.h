// qzDoomedEvents: events that have been taken out of a queue to be destroyed.
//
// Destroying an event may call back into anything: whoever purges takes out all
// that is to go before the first one goes, so that none of it is delivered.
//
// Ownership: destruction destroys the events.
#ifndef QZ_EVENT_DETAIL_DOOMEDEVENTS_H
#define QZ_EVENT_DETAIL_DOOMEDEVENTS_H

#include "event/EventHandler.h"

class qzDoomedEvents : public qzEventQueue {
  public:
    qzDoomedEvents() : current(nullptr), next(nullptr), outer(innermost) { innermost = this; }
    ~qzDoomedEvents();

    // Moves every event for which the predicate is true over here. The predicate
    // may change the queue.
    void take(qzEventQueue& from, qzEventHandler::Predicate predicate, void* arg);

    // For queues: the event is about to leave the one that it is in.
    static void unlinking(const qzEvent* event) {
        if (innermost) stepOver(event);
    }
    // For an event that is destroyed: leaves the event handler's queue, or the
    // doomed ones, if it is in there.
    static void leaveQueue(qzEvent* event) {
        const bool alone = !event->prev && !event->next;
        const bool only = qz_theEventHandler && qz_theEventHandler->head == event;
        if (!alone || only || innermost) findAndUnlink(event);
    }

  private:
    static void findAndUnlink(qzEvent* event);
    static void stepOver(const qzEvent* event);

    qzEvent* current; // of take(): the event that is being judged, unless it has left
    qzEvent* next;    // the one to be judged after it
    qzDoomedEvents* const outer;

    static qzDoomedEvents* innermost;
};

#endif
