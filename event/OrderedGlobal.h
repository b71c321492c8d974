// qzOrderedGlobal: what has to be set up before the program starts, and after
// what.
//
// The order in which the loader constructs the globals of different files is
// nobody's to choose. A global that needs others therefore constructs nothing at
// load time: it declares one of these, which registers itself, and
// qzInitializeToolkit() calls the functions in an order that respects what they
// depend on:
//
//     static qzOrderedGlobal* needs[] = {&qzOG_Init, nullptr};
//     static qzOrderedGlobal fonts(openFonts, closeFonts, needs, qzOrderedGlobal::application);
//
// Ownership: the object and its dependency array live until the process ends.
#ifndef QZ_EVENT_ORDEREDGLOBAL_H
#define QZ_EVENT_ORDEREDGLOBAL_H

#include "util/Export.h"

class QZ_EXPORT qzOrderedGlobal {
  public:
    // The registries. Whatever is not the library's own is the application's.
    enum { toolkit = 1, application = 2 };

    // Both functions may be null, as may the array of what must be initialized
    // first; the array ends with a null.
    qzOrderedGlobal(void (*init)(), qzOrderedGlobal** dependencies, int which);
    qzOrderedGlobal(void (*init)(), void (*dest)(), qzOrderedGlobal** dependencies, int which);
    qzOrderedGlobal(const qzOrderedGlobal&) = delete;
    qzOrderedGlobal& operator=(const qzOrderedGlobal&) = delete;

    // Whether the other is in this one's own array. What the other depends on
    // does not count.
    unsigned char dependsOn(const qzOrderedGlobal& other) const;

    void (*const init)();
    void (*const dest)();
    qzOrderedGlobal** const dependencies;
};

static_assert(sizeof(void*) != 4 || sizeof(qzOrderedGlobal) == 12,
              "applications lay these out as static objects");

#endif
