// qzEventHandler: the event queue of the process, with the operations that post
// to it, purge it and distribute it. The one there is: qz_theEventHandler.
//
// Receivers and destructors that run in here may do anything: send, connect,
// disconnect, purge, distribute, destroy what they like. A fan-out delivers to
// the connections that stood when it began and still stand when their turn
// comes.
//
// Ownership: takes the events and the data.
// Cost: posting is constant, purging linear in the queue. A queued send
//     takes a recycled block for each connection, an immediate one none.
#ifndef QZ_EVENT_EVENTHANDLER_H
#define QZ_EVENT_EVENTHANDLER_H

#include "event/EventQueue.h"

class QZ_EXPORT qzEventHandler : public qzEventQueue {
  public:
    using Predicate = unsigned char (*)(qzEvent* event, void* arg);

    // At the head if urgent, else at the tail.
    void postEvent(qzEvent* event, unsigned char urgent);

    // Sends the data to every input that the output is connected to, in the
    // order of connection; data may be null if there is none. A message that a
    // coalescing input has not received yet is superseded. Deliberate: by an
    // immediate send, too; what the input receives late must not be older than
    // what it got at once. Pinned by
    // qzEventHandler.CoalescingInputKeepsOneUndeliveredMessage.
    //
    // Deliberate: urgent messages of one send stand in the queue in reverse
    // order of connection, each having gone in at the head; the newest is
    // served first, as with urgent sends at all times. Pinned by
    // Reentrancy.RandomProgramsAgreeWithTheModel.
    //
    // Deliberate: data that nobody took a reference on during the call is
    // destroyed, whatever references it came with; senders hand over fresh data
    // without counting. Pinned by qzEventHandler.DataNobodyTookIsDestroyed.
    void postMessage(qzOutputChannel* output, qzData* data, qzObj::qzSendFlags how);

    // Delivers and destroys as many events as are queued now. Deliberate: what
    // receivers post waits for the next call, except that urgent events come
    // first and displace others to it; events that beget events cannot keep
    // the caller here. Pinned by Reentrancy.RandomProgramsAgreeWithTheModel.
    void distributeEvents();

    // Takes out every event for which the predicate is true, then destroys
    // them.
    void removeEvents(Predicate predicate, void* arg);
    // Those that carry a message to this very channel.
    void removeMessageEvents(qzInputChannel* channel);

  private:
    template <class Event> void distribute(Event* event);
};

static_assert(sizeof(qzEventHandler) == sizeof(qzEventQueue), "adds operations, no fields");

// A predicate for removeEvents(): whether the event carries a message to the
// channel, whose pending event it then is no longer.
QZ_EXPORT unsigned char zapMessageEvents(qzEvent* event, void* channel);

extern QZ_EXPORT qzEventHandler* qz_theEventHandler; // null until start-up

#endif
