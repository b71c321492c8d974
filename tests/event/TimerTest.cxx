#include "event/Timer.h"

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

#include "event/Dataflow.h"

namespace {

struct Timer : qzTimer {
    Timer(unsigned char again, Action call) : qzTimer(again), call(std::move(call)) {}
    void tick() override { Action{call}(); } // of a copy, as it may destroy this timer
    Action call;
};

// Random actions on timers, from outside and from their ticks, against a model
// that goes by absolute times.
class Program {
  public:
    explicit Program(unsigned seed) : random(seed) {
        for (State& timer : timers)
            renew(timer);
        for (int i = 0; i < 300; ++i)
            act();
    }

  private:
    struct State {
        std::unique_ptr<Timer> real;
        float duration, expiry;
        bool again;
    };
    using List = std::vector<State*>;

    void act() {
        State& timer = timers[random() % 4];
        const unsigned action = random() % 8;
        const unsigned number = random() % 6;
        if (action > 5) {
            timer.real->setAutoReload(timer.again = number % 2);
            return alarm(0.25f * number);
        }
        release(timer);
        if (action == 0) return renew(timer);
        if (action == 1) return timer.real->stopTimer();
        timer.duration = 0.25f * (number + 1);
        arm(&timer);
        timer.real->startTimer(timer.duration);
    }

    void renew(State& timer) {
        timer.real = std::make_unique<Timer>(timer.again, [&] { ticked(timer); });
    }
    void arm(State* timer) {
        timer->expiry = now + timer->duration;
        const auto sooner = [](State* a, State* b) { return a->expiry < b->expiry; };
        running.insert(std::upper_bound(running.begin(), running.end(), timer, sooner), timer);
    }
    void release(State& timer) {
        for (List* list : lists)
            list->erase(std::remove(list->begin(), list->end(), &timer), list->end());
    }

    void alarm(float elapsed) {
        List reloading;
        lists.push_back(&reloading);
        std::swap(left, elapsed);
        qzTimer::alarm(left);
        now += left;
        EXPECT_TRUE(running.empty() || running[0]->expiry > now);
        left = elapsed;
        lists.pop_back();
        for (State* timer : reloading)
            arm(timer);
        for (State& timer : timers)
            EXPECT_EQ(timer.real->isTimerTicking(),
                      std::count(running.begin(), running.end(), &timer));
    }
    void ticked(State& timer) {
        ASSERT_TRUE(!running.empty() && running[0] == &timer);
        left -= timer.expiry - now;
        EXPECT_GE(left, 0);
        now = timer.expiry;
        running.erase(running.begin());
        List& reloading = *lists.back();
        reloading.push_back(&timer);
        for (unsigned n = lists.size() < 5 ? random() % 3 : 0; n > 0; --n)
            act();
        if (!timer.again && !reloading.empty() && reloading.back() == &timer) reloading.pop_back();
    }

    std::mt19937 random;
    State timers[4] = {};
    List running;                       // by expiry
    std::vector<List*> lists{&running}; // and those of the alarms: to be armed again
    float now = 0, left = 0;            // of the alarm at hand
};

TEST(qzTimer, TicksDoWhatTheyLike) {
    for (unsigned seed = 0; seed < 100 && !HasFailure(); ++seed)
        Program program(seed);
}

TEST(qzTimer, AnAlarmEndsThoughTimersRestartForNoTime) {
    const struct {
        float first, again, later, elapsed; // what counts is what it was started for
        unsigned ticks;                     // also in the next alarm
    } rows[] = {
        {0, 0, 0, 1000, 2}, {-1, -1, -1, 1000, 2}, {1e-9f, 1e-9f, 1e-9f, 1000, 2},
        {1, 0, 5, 5, 2},    {1, 1, 0, 5, 5},
    };
    for (const auto& row : rows) {
        unsigned ticks = 0;
        Timer timer(0, [&] {
            ++ticks;
            timer.startTimer(row.again);
            timer.setTimerDuration(row.later);
        });
        timer.startTimer(row.first);
        qzTimer::alarm(row.elapsed);
        qzTimer::alarm(0.25f);
        EXPECT_EQ(ticks, row.ticks);
    }
}

TEST(qzTimer, TickQueuesAVoidValue) {
    const Dataflow flow;
    qzObj receiver;
    receiver.addInput("in", qzDT_void, nullptr, nullptr, 0);
    qzTimer timer(1);
    timer.connect("tick", &receiver, "in");
    timer.startTimer(1);
    qzTimer::alarm(1);
    timer.removeOutput("tick"); // at the next one there is none
    qzTimer::alarm(1);
    EXPECT_EQ(qz_theEventHandler->getCount(), 1u);
}

} // namespace
