// qzGlobalOrder: a registry of ordered globals, and the start and the end of a
// program that uses the library's events.
//
// There are two: the library's and the application's. Globals register at load
// time; qzInitializeToolkit() initializes the library's and then the
// application's, qzCleanupGlobalOrderings() cleans up in reverse. A program that
// uses only strings, containers, paths and patterns needs neither call.
#ifndef QZ_EVENT_GLOBALORDER_H
#define QZ_EVENT_GLOBALORDER_H

#include "util/VoidPtrArray.h"

class qzOrderedGlobal;

class QZ_EXPORT qzGlobalOrder {
  public:
    qzGlobalOrder();

    // Makes the registries that do not exist yet.
    static void createOrderings();
    // To the library's registry when which is qzOrderedGlobal::toolkit, otherwise
    // to the application's.
    static void add(qzOrderedGlobal* global, int which);

    // One that is added while create() runs is initialized by it, too.
    void add(qzOrderedGlobal* global);
    // Deliberate: a single pass over all pairs, which puts a global behind what it
    // depends on directly; a chain may stay misordered unless each global names
    // all that it needs, what its needs need included. Programs rely on the order
    // in which this brings up globals that are independent. Pinned by
    // qzGlobalOrder.SortIsOnePassOfSwaps.
    void sort();
    // Calls the init functions in order, sorting first what is not sorted.
    void create();
    // Calls the clean-up functions in reverse order.
    void destroy();

  protected:
    unsigned char sorted;
    qzVoidPtrArray globals; // of qzOrderedGlobal
};

static_assert(sizeof(void*) != 4 || sizeof(qzGlobalOrder) == 28, "flag and list, nothing else");

// Made by the first registration.
extern QZ_EXPORT qzGlobalOrder* qz_toolkitGlobalOrder;
extern QZ_EXPORT qzGlobalOrder* qz_applicationGlobalOrder;

// Start-up. Runs once per process: later calls do nothing, also those from
// within an init function.
QZ_EXPORT void qzInitializeToolkit();
QZ_EXPORT void qzInitGlobalOrderings();
// The end, once per process. Deliberate: runs the clean-up functions whether or
// not anything was initialized, so that a program can call it on every way out.
// Pinned by qzGlobalOrderDeathTest.PhasesRunOnceInWhicheverOrder.
QZ_EXPORT void qzCleanupGlobalOrderings();

#endif
