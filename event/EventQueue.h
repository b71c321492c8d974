// qzEventQueue: a doubly linked list of events. The links are the events' own.
//
// (1) An event is in one queue at most; one that is in none has no neighbours.
// (2) head and tail are both null or both not; count is the length.
//
// Ownership: get() hands an event over, remove() destroys it. A queue that is
//     destroyed leaves its events as they are.
// Trusted: events that are linked are in no queue, those that are removed are
//     in this one.
// Cost: constant, without allocation; contains() is linear.
#ifndef QZ_EVENT_EVENTQUEUE_H
#define QZ_EVENT_EVENTQUEUE_H

#include "event/Event.h"

class QZ_EXPORT qzEventQueue {
    friend class qzDoomedEvents;

  public:
    qzEventQueue() : head(nullptr), tail(nullptr), count(0) {}
    qzEventQueue(const qzEventQueue&) = delete;
    qzEventQueue& operator=(const qzEventQueue&) = delete;

    void append(qzEvent* event); // at the tail
    void insert(qzEvent* event); // at the head
    // The head, which is the caller's from here on; null when there is none.
    qzEvent* get();
    // Takes the event out and destroys it.
    void remove(qzEvent* event);
    unsigned char contains(const qzEvent* event) const;

    qzEvent* getHead() const { return head; }
    qzEvent* getTail() const { return tail; }
    unsigned getCount() const { return count; }

  protected:
    // Whether the event is linked in here, of one that is in no other queue.
    bool holds(const qzEvent* event) const { return event->prev || head == event; }
    void unlink(qzEvent* event);
    // Hands it over to the caller.
    template <class Event> void take(Event* event);

    qzEvent* head;
    qzEvent* tail;
    unsigned count;
};

static_assert(sizeof(void*) != 4 || sizeof(qzEventQueue) == 12, "head, tail and count");

#endif
