// qzEvent: something to be done when its turn in the event queue comes.
//
// A kind of event derives from it, draws a type code (event/EventTypes.h) and
// says in deliver() what is to be done.
//
// Ownership: an event belongs to its queue once it is posted and is destroyed
//     after its delivery. One that is destroyed otherwise leaves
//     qz_theEventHandler by itself; take it out of a queue of your own.
#ifndef QZ_EVENT_EVENT_H
#define QZ_EVENT_EVENT_H

#include <cstdio>

#include "event/Obj.h"

class QZ_EXPORT qzEvent : public qzObj {
    friend class qzEventQueue;
    friend class qzDoomedEvents;

  public:
    // Takes the next sequence number; the first event of a process has 1.
    explicit qzEvent(unsigned type);
    // Not queued. Deliberate: a copy has the source's sequence number; it stands
    // for the same event. Pinned by qzEvent.CopyKeepsTheSequenceNumber.
    qzEvent(const qzEvent& other);
    ~qzEvent() override;

    // slots 10-12
    virtual void deliver() = 0;
    // Prints one line, "Event: seq=%d type=%d\n".
    virtual void dump(FILE* out);
    // The channel that the event is addressed to, or null.
    virtual qzInputChannel* getChannel();

    unsigned getType() const { return type; }
    unsigned getSequenceNumber() const { return sequenceNumber; }
    // Its neighbours in the queue; null at the ends and when it is not queued.
    qzEvent* getNext() const { return next; }
    qzEvent* getPrev() const { return prev; }

  protected:
    // Leaves the queue or the delivery that it is in. A destructor that may call
    // back into the queue does this first.
    void leave();

  private:
    qzEvent* next;
    qzEvent* prev;
    unsigned type;
    unsigned sequenceNumber;

    static unsigned nextSequenceNumber;
};

static_assert(sizeof(void*) != 4 || sizeof(qzEvent) == 28, "derived classes start behind it");

#endif
