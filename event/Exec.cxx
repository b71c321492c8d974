#include "event/Exec.h"

#include <sys/times.h>

#include <algorithm>
#include <cassert>
#include <cerrno>

#include "event/Application.h"
#include "event/EventHandler.h"
#include "event/SelectHandler.h"
#include "event/Timer.h"

qzExec* qz_theExecutive = nullptr;

namespace {

// Longer waits than this are cut to it: three years, in seconds.
const float longestWait = 1e8f;

// The clock for timers, 100 ticks a second. It wraps. Linux takes no structure to
// fill in as well, and is then three times as fast.
unsigned clockTicks() { return static_cast<unsigned>(times(nullptr)); }

timeval toTimeval(float seconds) {
    if (!(seconds > 0)) return {0, 0};
    const int whole = static_cast<int>(seconds);
    const float fraction = seconds - static_cast<float>(whole);
    return {whole, static_cast<int>(fraction * 1e6)};
}

// A walk over a list that may change under it. It visits what was there when it
// began and has not been removed since: removals move the walks along, additions
// go behind their ends.
class Walk {
  public:
    explicit Walk(const qzArray& list)
        : outer(innermost), list(list), position(0), end(list.length()) {
        innermost = this;
    }
    ~Walk() { innermost = outer; }

    bool notDone() const { return position < end; }
    unsigned step() { return position++; }

    static void removed(const qzArray& list, unsigned index) {
        for (Walk* walk = innermost; walk; walk = walk->outer) {
            if (&walk->list != &list) continue;
            if (index < walk->position) --walk->position;
            if (index < walk->end) --walk->end;
        }
    }

  private:
    static Walk* innermost;

    Walk* const outer;
    const qzArray& list;
    unsigned position;
    unsigned end;
};

Walk* Walk::innermost = nullptr;

template <class List, class Entry> void removeFirst(List& list, Entry entry) {
    const int index = list.find(entry);
    if (index < 0) return;
    list.remove(index, 1);
    Walk::removed(list, index);
}

void callFunctions(const qzStubFuncArray& functions) {
    for (Walk walk(functions); walk.notDone();)
        functions[walk.step()]();
}

template <class Call> void forApplications(const qzVoidPtrArray& applications, Call call) {
    for (Walk walk(applications); walk.notDone();)
        call(static_cast<qzApplication*>(applications[walk.step()]));
}

} // namespace

// One wait, what it found, and who is to be told. Passes nest, as callbacks may
// poll.
class qzExec::Pass {
  public:
    explicit Pass(const qzExec& exec) : exec(exec), outer(innermost), limit(exec.descriptorLimit) {
        innermost = this;
    }
    ~Pass() { innermost = outer; }

    void noteTimers();
    void limitWait(float maxWait);
    void copySets();
    int wait() { return ready = select(limit, set(read), set(write), set(exception), &timeout); }
    void advanceTimers();
    void serve();

  private:
    fd_set* set(unsigned kind) { return wanted[kind] ? &sets[kind] : nullptr; }
    unsigned long readyIn(unsigned word) const; // of the sets: descriptors as bits
    void serve(unsigned descriptor, unsigned kind, void (qzSelectHandler::*handle)());
    bool take(unsigned descriptor, unsigned kind);

    static Pass* innermost;

    const qzExec& exec;
    Pass* const outer;
    const unsigned limit;
    float firstDelta = 0;     // of the first timer
    unsigned start = 0;       // by the clock, when there is a timer
    bool timerBounds = false; // the wait ends when the first timer is due
    timeval timeout = {0, 0};
    int ready = 0; // select()'s result
    bool wanted[kinds];
    fd_set sets[kinds]; // of the wanted kinds; select() leaves the ready ones
};

qzExec::Pass* qzExec::Pass::innermost = nullptr;

void qzExec::Pass::noteTimers() {
    if (!qzTimer::activeTimers) return;
    firstDelta = qzTimer::activeTimers->getDelta();
    start = clockTicks();
}

void qzExec::Pass::limitWait(float maxWait) {
    if (qz_theEventHandler->getCount() > 0) return;
    maxWait = std::min(maxWait, longestWait);
    timerBounds = qzTimer::activeTimers && firstDelta < maxWait;
    timeout = toTimeval(timerBounds ? firstDelta : maxWait);
}

void qzExec::Pass::copySets() {
    for (unsigned kind = 0; kind < kinds; ++kind) {
        wanted[kind] = exec.wanted[kind];
        if (wanted[kind]) sets[kind] = exec.sets[kind];
    }
}

// Deliberate: a wait that runs its course for a timer counts as the timer's full
// delta, not as what the clock says. The clock is coarser than many a delta: by it
// the loop would wake for a timer only to find that it is not due. Pinned by
// qzExec.FullWaitCountsAsTheTimersDelta.
void qzExec::Pass::advanceTimers() {
    if (!qzTimer::activeTimers) return;
    const int selectError = errno;
    if (ready == 0 && timerBounds) {
        qzTimer::alarm(firstDelta);
    } else {
        const float elapsed = static_cast<float>((clockTicks() - start) / 100.0);
        const float remaining = firstDelta - elapsed;
        if (remaining > 0) {
            qzTimer::activeTimers->setDelta(remaining);
        } else {
            qzTimer::alarm(elapsed);
        }
    }
    errno = selectError;
}

// Looks for ready descriptors a word of the sets at a time.
void qzExec::Pass::serve() {
    if (ready <= 0) return;
    for (unsigned word = 0; word * NFDBITS < limit; ++word) {
        for (unsigned long left = readyIn(word); left != 0; left &= left - 1) {
            const unsigned descriptor = word * NFDBITS + __builtin_ctzl(left);
            serve(descriptor, read, &qzSelectHandler::handleRead);
            serve(descriptor, write, &qzSelectHandler::handleWrite);
            serve(descriptor, exception, &qzSelectHandler::handleException);
        }
    }
}

unsigned long qzExec::Pass::readyIn(unsigned word) const {
    unsigned long bits = 0;
    for (unsigned kind = 0; kind < kinds; ++kind)
        if (wanted[kind]) bits |= static_cast<unsigned long>(sets[kind].fds_bits[word]);
    return bits;
}

inline void qzExec::Pass::serve(unsigned descriptor, unsigned kind,
                                void (qzSelectHandler::*handle)()) {
    if (!take(descriptor, kind)) return;
    // The last call may have removed this handler or put another in its place.
    if (qzSelectHandler* const handler = exec.handlers[descriptor]) (handler->*handle)();
}

// Whether the descriptor is ready and yet to be served. The executive's passes in
// whose callbacks this one runs do not serve it again.
bool qzExec::Pass::take(unsigned descriptor, unsigned kind) {
    if (!wanted[kind] || !FD_ISSET(descriptor, &sets[kind])) return false;
    for (Pass* pass = outer; pass; pass = pass->outer)
        if (&pass->exec == &exec && pass->wanted[kind]) FD_CLR(descriptor, &pass->sets[kind]);
    return true;
}

qzExec::qzExec()
    : lowestDescriptor(noDescriptor), descriptorLimit(0), dirty(0), wanted{}, sets{}, handlers{} {}

// The loop

void qzExec::loop() {
    do {
        poll(1000.0f);
    } while (applications.length() > 0);
}

void qzExec::poll(float maxWait) {
    refresh();                          // 1
    if (hasHandlers()) {                // 2
        callFunctions(preSelectFuncs);  // 3
        waitAndServe(maxWait);          // 4-9
        callFunctions(postSelectFuncs); // 10
    }
    qz_theEventHandler->distributeEvents(); // 11
}

void qzExec::waitAndServe(float maxWait) {
    if (!hasHandlers()) return; // since a pre-select function polled
    Pass pass(*this);
    pass.noteTimers();       // 4
    pass.limitWait(maxWait); // 5
    pass.copySets();         // 6
    pass.wait();             // 7
    pass.advanceTimers();    // 8
    pass.serve();            // 9
}

unsigned char qzExec::willBlock() {
    refresh();
    if (!hasHandlers()) return 0;
    Pass pass(*this);
    pass.copySets();
    return pass.wait() == 0;
}

// Descriptors

fd_set qzExec::getSet(unsigned kind) {
    refresh();
    return sets[kind];
}

fd_set qzExec::getReadSet() { return getSet(read); }

fd_set qzExec::getWriteSet() { return getSet(write); }

fd_set qzExec::getExceptionSet() { return getSet(exception); }

void qzExec::updateSelectState() {
    lowestDescriptor = noDescriptor;
    descriptorLimit = 0;
    for (unsigned kind = 0; kind < kinds; ++kind) {
        wanted[kind] = 0;
        FD_ZERO(&sets[kind]);
    }
    for (unsigned short d = 0; d < tableSize; ++d)
        if (handlers[d]) includeHandler(d);
    dirty = 0;
}

// The descriptor is above those that were included before it.
void qzExec::includeHandler(unsigned short descriptor) {
    const qzSelectHandler* const handler = handlers[descriptor];
    const unsigned char wants[kinds] = {handler->isReading(), handler->isWriting(),
                                        handler->isExceptioning()};
    for (unsigned kind = 0; kind < kinds; ++kind) {
        if (!wants[kind]) continue;
        wanted[kind] = 1;
        FD_SET(descriptor, &sets[kind]);
    }
    if (!hasHandlers()) lowestDescriptor = descriptor;
    descriptorLimit = descriptor + 1;
}

void qzExec::addSelectHandler(qzSelectHandler* handler) {
    assert(inTable(handler->getDescriptor()));
    handlers[handler->getDescriptor()] = handler;
    dirty = 1;
}

void qzExec::removeSelectHandler(qzSelectHandler* handler) {
    if (!inTable(handler->getDescriptor())) return;
    handlers[handler->getDescriptor()] = nullptr;
    dirty = 1;
}

// Functions

void qzExec::addPreSelectFunc(void (*function)()) { preSelectFuncs.append(function); }

void qzExec::addPostSelectFunc(void (*function)()) { postSelectFuncs.append(function); }

void qzExec::removePreSelectFunc(void (*function)()) { removeFirst(preSelectFuncs, function); }

void qzExec::removePostSelectFunc(void (*function)()) { removeFirst(postSelectFuncs, function); }

// Applications

void qzExec::add(qzApplication* application) { applications.append(application); }

void qzExec::remove(qzApplication* application) {
    removeFirst(applications, static_cast<void*>(application));
}

unsigned char qzExec::contains(qzApplication* application) const {
    return applications.find(application) >= 0;
}

void qzExec::initialize(int argc, char** argv) {
    forApplications(applications,
                    [=](qzApplication* application) { application->initialize(argc, argv); });
}

void qzExec::open() {
    forApplications(applications, [](qzApplication* application) { application->open(); });
}

void qzExec::close() {
    forApplications(applications, [](qzApplication* application) {
        if (application->isOpened()) application->close();
    });
}
