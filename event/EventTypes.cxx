#include "event/EventTypes.h"

#include "util/Sequencer.h"

qzSequencer* qz_nextEventType = nullptr;

// What will be drawn, for events that are made before.
unsigned qzET_Unknown = 0;
unsigned qzET_MessageEvent = 1;

void qzDrawEventTypes() {
    if (qz_nextEventType) return;
    qz_nextEventType = new qzSequencer;
    qzET_Unknown = (*qz_nextEventType)();
    qzET_MessageEvent = (*qz_nextEventType)();
}
