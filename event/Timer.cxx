// The active timers are a delta list: ordered by expiry, each delta counting from
// the timer before, so that passing time touches the first one only.
//
// (1) A timer is in the active list, on the chain of one alarm, or in neither;
//     `next` belongs to where it is.
// (2) On a chain are the timers that an alarm puts back into the list when it has
//     let all others tick: those that reload, in the order in which they ticked,
//     and those that it leaves to the next alarm.
// (3) Alarms nest, as a tick may poll. Whoever starts, stops or destroys a timer
//     takes it away from every alarm under way first.
#include "event/Timer.h"

#include "event/DataTypes.h"

qzTimer* qzTimer::activeTimers = nullptr;
qzTimer* qzTimer::lastStarted = nullptr;

class qzTimer::Alarm {
  public:
    explicit Alarm(float elapsed) : outer(innermost), number(++last), elapsed(elapsed) {
        innermost = this;
    }
    ~Alarm() { innermost = outer; }

    void runExpired();
    void rearmChain();

    static void letGo(qzTimer* timer);

  private:
    bool defers(const qzTimer* timer) const;
    void fire(qzTimer* timer);
    void chain(qzTimer* timer);
    void unchain(qzTimer* timer);

    static Alarm* innermost;
    static unsigned short last;

    Alarm* const outer;
    const unsigned short number;
    float elapsed;              // what is left of it
    qzTimer* ticking = nullptr; // null again when it has been let go
    qzTimer* first = nullptr;   // of the chain
    qzTimer** end = &first;
};

qzTimer::Alarm* qzTimer::Alarm::innermost = nullptr;
unsigned short qzTimer::Alarm::last = 0;

void qzTimer::Alarm::runExpired() {
    while (qzTimer* timer = activeTimers) {
        if (timer->delta > elapsed) {
            timer->setDelta(timer->delta - elapsed);
            return;
        }
        elapsed -= timer->delta;
        timer->unlink();
        if (defers(timer)) {
            chain(timer);
        } else {
            fire(timer);
        }
    }
}

void qzTimer::Alarm::fire(qzTimer* timer) {
    timer->active = 0;
    timer->tickedIn = number;
    ticking = timer;
    timer->tick();
    if (ticking && ticking->autoReload) chain(ticking);
    ticking = nullptr;
}

void qzTimer::Alarm::chain(qzTimer* timer) {
    *end = timer;
    end = &timer->next;
}

void qzTimer::Alarm::unchain(qzTimer* timer) {
    for (qzTimer** link = &first; *link; link = &(*link)->next) {
        if (*link != timer) continue;
        *link = timer->next;
        if (!*link) end = link;
        timer->next = nullptr;
        timer->active = 0;
        return;
    }
}

void qzTimer::Alarm::rearmChain() {
    while (qzTimer* timer = first) {
        first = timer->next;
        // One that was put off is still the start that it was.
        timer->addToActiveList(timer->active ? timer->startedFor : timer->duration);
    }
}

void qzTimer::Alarm::letGo(qzTimer* timer) {
    for (Alarm* alarm = innermost; alarm; alarm = alarm->outer) {
        if (alarm->ticking == timer) alarm->ticking = nullptr;
        alarm->unchain(timer);
    }
}

// Whether a timer that has ticked in here and was started again would come up
// again and again: for ever without a duration, and also when what is left is so
// much more that floats cannot tell the steps.
bool qzTimer::Alarm::defers(const qzTimer* timer) const {
    const float mostSteps = 1e6f;
    return timer->tickedIn == number && !(timer->startedFor * mostSteps > elapsed);
}

qzTimer::qzTimer(unsigned char autoReload)
    : duration(0), delta(0), active(0), autoReload(autoReload), tickedIn(0),
      tickChannel(addOutput("tick", qzDT_void)), next(nullptr), previous(nullptr), startedFor(0) {}

qzTimer::~qzTimer() { stopTimer(); }

void qzTimer::tick() {
    tickChannel = findOutput("tick");
    if (tickChannel) sendVoid(tickChannel, qzSF_Queued);
}

void qzTimer::startTimer() {
    stopTimer();
    addToActiveList(duration);
}

void qzTimer::startTimer(float seconds) {
    duration = seconds;
    startTimer();
}

void qzTimer::stopTimer() {
    Alarm::letGo(this);
    if (active) removeFromActiveList();
}

void qzTimer::alarm(float elapsed) {
    Alarm alarm(elapsed);
    alarm.runExpired();
    alarm.rearmChain();
}

// Behind all that expire at the same time: these tick in the order in which they
// were started.
void qzTimer::addToActiveList(float seconds) {
    float remaining = seconds;
    qzTimer* before = nullptr;
    qzTimer* after = activeTimers;
    if (lastStarted && lastStarted->startedFor == seconds) {
        // The walk would pass it with nothing remaining.
        remaining = 0;
        before = lastStarted;
        after = before->next;
    }
    for (; after && after->delta <= remaining; before = after, after = after->next)
        remaining -= after->delta;
    previous = before;
    next = after;
    (before ? before->next : activeTimers) = this;
    if (after) {
        after->previous = this;
        after->delta -= remaining;
    }
    delta = remaining;
    active = 1;
    startedFor = seconds;
    lastStarted = this;
}

void qzTimer::removeFromActiveList() {
    if (!previous && activeTimers != this) return;
    if (next) next->delta += delta;
    unlink();
    active = 0;
}

void qzTimer::unlink() {
    lastStarted = nullptr;
    (previous ? previous->next : activeTimers) = next;
    if (next) next->previous = previous;
    next = previous = nullptr;
}
