// qzTimer: ticks once, or again and again, after a given time.
//
// An expired timer calls tick(), which sends a void value on the output "tick";
// connect to that, or override tick().
//
// Timers advance while qzExec::poll() waits for descriptors, and only then: the
// time that callbacks take is not counted, and a program without a descriptor
// handler has no running timers. Deliberate: one that reloads starts over for its
// full duration after all that expired in the same pass have ticked, and by how
// much it was late is not made up for; periods are never shorter than asked for,
// and a program that was held up is not flooded. Pinned by
// qzTimer.TicksDoWhatTheyLike. See docs/event-loop.md.
//
// tick() may start, stop and destroy any timer, its own included, and poll again.
// A stopped one does not tick any more, even if it has expired or is about to
// reload. A timer started in a tick runs from when the ticking one was due, so it
// may expire in the same alarm; one that has ticked in that alarm and is started
// again for no time at all waits for the next.
//
// Units: seconds.
// Trusted: durations are finite.
// Ownership: the active list holds no references; destruction stops the timer.
// Cost: starting walks the list of active timers up to where it expires, but not
//     for one that has the duration of the timer started just before. A pass looks
//     at the first one only.
#ifndef QZ_EVENT_TIMER_H
#define QZ_EVENT_TIMER_H

#include "event/Obj.h"

class qzOutputChannel;

class QZ_EXPORT qzTimer : public qzObj {
  public:
    explicit qzTimer(unsigned char autoReload);
    qzTimer(const qzTimer&) = delete;
    qzTimer& operator=(const qzTimer&) = delete;

    ~qzTimer() override;
    // after those of qzObj
    // Runs with the timer inactive. This one queues a void value.
    virtual void tick();

    // Both measure the full duration from now, whether or not the timer runs.
    void startTimer();
    void startTimer(float seconds);
    void stopTimer();

    // For the next start; a running timer keeps the time it was started for.
    void setTimerDuration(float seconds) { duration = seconds; }
    float getTimerDuration() const { return duration; }
    void setAutoReload(unsigned char again) { autoReload = again; }
    unsigned char autoReloads() const { return autoReload; }
    unsigned char isTimerTicking() const { return active; }
    // From the expiry of the timer before this one in the list.
    float getDelta() const { return delta; }
    void setDelta(float seconds) {
        delta = seconds;
        lastStarted = nullptr;
    }

    // For the executive: advances the active timers and has those tick whose time
    // has come, in the order of expiry; timers that expire together tick in the
    // order in which they were started.
    static void alarm(float elapsed);
    // By expiry; null when no timer runs.
    static qzTimer* activeTimers;

  private:
    class Alarm;

    void addToActiveList(float seconds);
    void removeFromActiveList();
    void unlink();

    // The timer that was put into the active list last, while the list is as that
    // left it; null otherwise.
    static qzTimer* lastStarted;

    float duration;
    float delta;
    unsigned char active;
    unsigned char autoReload;
    unsigned short tickedIn; // the last alarm that it ticked in, by number
    qzOutputChannel* tickChannel;
    qzTimer* next;
    qzTimer* previous; // in the active list only
    float startedFor;  // the duration that it was put there with
};

static_assert(sizeof(void*) != 4 || sizeof(qzTimer) == 40, "applications derive from this");

#endif
