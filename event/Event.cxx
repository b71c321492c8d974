#include "event/Event.h"

#include "event/detail/DoomedEvents.h"
#include "event/detail/EventInFlight.h"

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
