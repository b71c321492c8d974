// qzEventInFlight: an event that has left the queue and is being delivered.
//
// Its receiver may destroy it, which is noticed here, so that the distribution
// does not do it again.
#ifndef QZ_EVENT_DETAIL_EVENTINFLIGHT_H
#define QZ_EVENT_DETAIL_EVENTINFLIGHT_H

class qzEvent;

class qzEventInFlight {
  public:
    explicit qzEventInFlight(qzEvent* event) : event(event), outer(innermost) { innermost = this; }
    ~qzEventInFlight() { innermost = outer; }
    qzEventInFlight(const qzEventInFlight&) = delete;
    qzEventInFlight& operator=(const qzEventInFlight&) = delete;

    qzEvent* get() const { return event; } // null once it has been destroyed

    static void destroyed(const qzEvent* gone) {
        for (qzEventInFlight* flight = innermost; flight; flight = flight->outer)
            if (flight->event == gone) flight->event = nullptr;
    }

  private:
    qzEvent* event;
    qzEventInFlight* const outer;

    static qzEventInFlight* innermost;
};

#endif
