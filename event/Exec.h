// qzExec: the dispatcher, the main loop of a program.
//
// There is one, qz_theExecutive, made at start-up. It serves descriptor handlers
// through select(), runs plain functions before and after each wait, advances the
// timers, keeps the register of applications, and at the end of each pass has
// qz_theEventHandler distribute what is queued. docs/event-loop.md goes through a
// pass step by step.
//
// Callbacks may add and remove handlers, functions and applications and call
// poll() again. A handler, function or application that has been removed is not
// called any more; a function or application added in the course of a walk waits
// for the next one.
//
// Units: seconds. Descriptors 0 to 99 can be served.
// Ownership: handlers and applications are the caller's. The executive itself
//     outlives its passes.
// Errors: none are reported. When select() fails, the pass serves no descriptor.
// Cost: a pass is one select(), and one or two readings of the clock while a timer
//     runs. Nothing is allocated.
#ifndef QZ_EVENT_EXEC_H
#define QZ_EVENT_EXEC_H

#include <sys/select.h>

#include "util/StubFuncArray.h"
#include "util/VoidPtrArray.h"

class qzApplication;
class qzSelectHandler;

class QZ_EXPORT qzExec {
  public:
    qzExec();
    qzExec(const qzExec&) = delete;
    qzExec& operator=(const qzExec&) = delete;

    // Polls until no application is registered, at least once.
    void loop();
    // One pass. Deliberate: without a descriptor handler it distributes queued
    // events and does nothing else; it runs no functions, does not wait and does
    // not advance the timers. Programs that live on queued events alone run
    // through them at full speed. Pinned by
    // qzExec.WithoutHandlersAPassOnlyDistributes.
    void poll(float maxWait);
    // Whether no descriptor is ready. Queued events and timers do not count;
    // without handlers, and when select() fails, the answer is 0.
    unsigned char willBlock();

    // The descriptors that the handlers wait for.
    fd_set getReadSet();
    fd_set getWriteSet();
    fd_set getExceptionSet();
    void updateSelectState();

    // Replaces the handler of the same descriptor.
    void addSelectHandler(qzSelectHandler* handler);
    // Deliberate: removes whatever handler the descriptor has. Callers who are
    // about to close a descriptor clear its place without asking who took it over.
    // One out of range changes nothing. Pinned by qzExec.TheTableGoesByDescriptor.
    void removeSelectHandler(qzSelectHandler* handler);

    // Each may be there several times; the first one is removed.
    void addPreSelectFunc(void (*function)());
    void addPostSelectFunc(void (*function)());
    void removePreSelectFunc(void (*function)());
    void removePostSelectFunc(void (*function)());

    void add(qzApplication* application);
    void remove(qzApplication* application);
    unsigned char contains(qzApplication* application) const;

    // Each goes to the registered applications in turn, close() to the opened
    // ones.
    void initialize(int argc, char** argv);
    void open();
    void close();

  private:
    class Pass;
    enum { read, write, exception, kinds }; // of readiness
    static const unsigned short tableSize = 100;
    static const unsigned short noDescriptor = 101; // as the lowest one

    static bool inTable(int descriptor) { return static_cast<unsigned>(descriptor) < tableSize; }

    bool hasHandlers() const { return lowestDescriptor != noDescriptor; }
    void refresh() {
        if (dirty) updateSelectState();
    }
    void includeHandler(unsigned short descriptor);
    fd_set getSet(unsigned kind);
    void waitAndServe(float maxWait);

    unsigned short lowestDescriptor; // of those with a handler, or noDescriptor
    unsigned short descriptorLimit;  // highest one plus 1; 0 when there is none
    unsigned char dirty;             // the table has changed since the sets were made
    unsigned char wanted[kinds];     // by some handler at least
    fd_set sets[kinds];
    qzSelectHandler* handlers[tableSize]; // by descriptor
    qzStubFuncArray preSelectFuncs;
    qzStubFuncArray postSelectFuncs;
    qzVoidPtrArray applications;
};

static_assert(sizeof(void*) != 4 || sizeof(qzExec) == 864,
              "the sets, a hundred handlers and three lists");

// Null until the start-up, or the first application.
extern QZ_EXPORT qzExec* qz_theExecutive;

#endif
