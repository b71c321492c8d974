// The library's own ordered globals: what qzInitializeToolkit() sets up.
//
// A global that uses any of it names &qzOG_Init among its dependencies; one that
// transcribes names &qzOG_Transcriber. The application's globals come after both
// in any case.
#ifndef QZ_EVENT_TOOLKIT_H
#define QZ_EVENT_TOOLKIT_H

#include "event/OrderedGlobal.h"

// The table of property names, the data and event type codes, the standard
// converters, and the singletons: executive, event handler, debugger.
extern QZ_EXPORT qzOrderedGlobal qzOG_Init;
QZ_EXPORT void qzOG_Init_cons();
// Does nothing: the singletons live until the process ends.
QZ_EXPORT void qzOG_Init_dest();

// The reader of the binary object format.
extern QZ_EXPORT qzOrderedGlobal qzOG_Transcriber;

#endif
