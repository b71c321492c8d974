// The codes by which kinds of event are told apart.
//
// Code that defines a new kind of event draws the next code from
// qz_nextEventType, after the toolkit has been initialized:
//
//     unsigned resizeEvent = (*qz_nextEventType)();
#ifndef QZ_EVENT_EVENTTYPES_H
#define QZ_EVENT_EVENTTYPES_H

#include "util/Export.h"

class qzSequencer;

extern QZ_EXPORT qzSequencer* qz_nextEventType; // null until the codes are drawn
extern QZ_EXPORT unsigned qzET_Unknown;         // 0
extern QZ_EXPORT unsigned qzET_MessageEvent;    // 1

// For start-up: makes the sequencer and draws the two codes, once.
QZ_EXPORT void qzDrawEventTypes();

#endif
