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

class qzTimer::Alarm {
  public:
    explicit Alarm(float elapsed)
        : outer(innermost), depth(outer ? outer->depth + 1 : 1), elapsed(elapsed) {
        innermost = this;
    }
    ~Alarm() { innermost = outer; }

    void runExpired();
    void rearmChain();

    static void letGo(qzTimer* timer);
    static unsigned short deferrer(float duration);

  private:
    void fire(qzTimer* timer);
    void chain(qzTimer* timer);
    void unchain(qzTimer* timer);

    static Alarm* innermost;

    Alarm* const outer;
    const unsigned short depth;
    float elapsed;              // what is left of it
    qzTimer* ticking = nullptr; // null again when it has been let go
    qzTimer* first = nullptr;   // of the chain
    qzTimer** end = &first;
};

qzTimer::Alarm* qzTimer::Alarm::innermost = nullptr;

void qzTimer::Alarm::runExpired() {
    while (qzTimer* timer = activeTimers) {
        if (timer->delta > elapsed) {
            timer->delta -= elapsed;
            return;
        }
        elapsed -= timer->delta;
        activeTimers = timer->next;
        timer->next = nullptr;
        if (timer->deferredBy == depth) {
            chain(timer);
        } else {
            fire(timer);
        }
    }
}

void qzTimer::Alarm::fire(qzTimer* timer) {
    timer->active = 0;
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
        timer->deferredBy = 0;
        timer->addToActiveList();
    }
}

void qzTimer::Alarm::letGo(qzTimer* timer) {
    for (Alarm* alarm = innermost; alarm; alarm = alarm->outer) {
        if (alarm->ticking == timer) alarm->ticking = nullptr;
        alarm->unchain(timer);
    }
}

// The alarm under way, by its depth, if a timer started now with this duration
// would come up in it again and again: for ever without a duration, and also when
// what is left of the alarm is so much more that floats cannot tell the steps.
unsigned short qzTimer::Alarm::deferrer(float duration) {
    const float mostSteps = 1e6f;
    if (!innermost || duration * mostSteps > innermost->elapsed) return 0;
    return innermost->depth;
}

qzTimer::qzTimer(unsigned char autoReload)
    : duration(0), delta(0), active(0), autoReload(autoReload), deferredBy(0),
      tickChannel(addOutput("tick", qzDT_void)), next(nullptr) {}

qzTimer::~qzTimer() { stopTimer(); }

const char* qzTimer::className() const { return "qzTimer"; }

void qzTimer::tick() { sendVoid(tickChannel, qzSF_Queued); }

void qzTimer::startTimer() {
    stopTimer();
    deferredBy = Alarm::deferrer(duration);
    addToActiveList();
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
void qzTimer::addToActiveList() {
    float remaining = duration;
    qzTimer** link = &activeTimers;
    for (; *link && (*link)->delta <= remaining; link = &(*link)->next)
        remaining -= (*link)->delta;
    next = *link;
    *link = this;
    delta = remaining;
    if (next) next->delta -= remaining;
    active = 1;
}

void qzTimer::removeFromActiveList() {
    qzTimer** link = &activeTimers;
    while (*link && *link != this)
        link = &(*link)->next;
    if (!*link) return;
    if (next) next->delta += delta;
    *link = next;
    next = nullptr;
    active = 0;
}
