// qzDebug: the hook for an application's debug options.
//
// Deliberate: both operations do nothing. Programs built for a debugging
// library construct the object and pass it their options unconditionally; here
// that costs them nothing. Pinned by qzDebug.LeavesTheOptionsAlone.
#ifndef QZ_UTIL_DEBUG_H
#define QZ_UTIL_DEBUG_H

#include "util/Export.h"

class qzStr;

class QZ_EXPORT qzDebug {
  public:
    qzDebug(unsigned char enabled);
    void parseOption(qzStr& option);
};

// Made by the library's start-up; null until then.
extern QZ_EXPORT qzDebug* qz_theDebugger;

#endif
