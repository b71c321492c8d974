#include "event/Timer.h"

#include <algorithm>
#include <array>
#include <memory>
#include <random>
#include <vector>

#include "event/Dataflow.h"

namespace {

struct Timer : qzTimer {
    Timer(unsigned char again, Action call) : qzTimer(again), call(std::move(call)) {}
    void tick() override {
        const Action copy = call; // which may destroy this timer
        copy();
    }
    Action call;
};

// Random actions on timers, from outside and from their ticks, against a model
// that goes by absolute times.
class Program {
  public:
    explicit Program(unsigned seed) : random(seed) {
        for (State& timer : timers)
            renew(timer, false);
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
        if (action == 0) {
            renew(timer, number % 2);
        } else if (action == 1) {
            timer.real->setAutoReload(timer.again = number % 2);
        } else if (action == 2) {
            release(timer);
            timer.real->stopTimer();
        } else if (action < 6) {
            release(timer);
            timer.duration = 0.25f * (number + 1);
            arm(&timer);
            timer.real->startTimer(timer.duration);
        } else {
            alarm(0.25f * number);
        }
    }

    void renew(State& timer, bool again) {
        release(timer);
        timer.again = again;
        timer.real = std::make_unique<Timer>(again, [&] { ticked(timer); });
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
    Dataflow flow;
    for (unsigned seed = 0; seed < 100 && !HasFailure(); ++seed)
        Program program(seed);
}

TEST(qzTimer, AnAlarmEndsThoughTimersRestartForNoTime) {
    Dataflow flow;
    for (float seconds : {0.0f, -1.0f, 1e-9f}) {
        unsigned ticks = 0;
        Timer timer(0, [&] { ++ticks, timer.startTimer(); });
        timer.startTimer(seconds);
        qzTimer::alarm(1000);
        qzTimer::alarm(0.25f);
        EXPECT_EQ(ticks, 2u);
    }
    // What counts is what the timer was started for, not what it will be.
    for (const auto& row : {std::array{0.0f, 5.0f, 1.0f}, std::array{1.0f, 0.0f, 5.0f}}) {
        float ticks = 0;
        Timer timer(0, [&] { ++ticks, timer.startTimer(row[0]), timer.setTimerDuration(row[1]); });
        timer.startTimer(1);
        qzTimer::alarm(5);
        EXPECT_EQ(ticks, row[2]);
    }
    bool ticked = false;
    Timer other(0, [&] { ticked = true; }), starter(0, [&] { other.startTimer(0); });
    starter.startTimer(1);
    qzTimer::alarm(1);
    EXPECT_TRUE(ticked) << "one that has not ticked yet";
}

TEST(qzTimer, TickQueuesAVoidValue) {
    Dataflow flow;
    unsigned ticks = 0;
    qzObj receiver;
    void (*const count)(unsigned*) = [](unsigned* ticks) { ++*ticks; };
    receiver.addInput("in", qzDT_void, &ticks, reinterpret_cast<void (*)()>(count), 0);
    qzTimer timer(1);
    timer.connect("tick", &receiver, "in");
    timer.startTimer(0.5f);
    timer.setTimerDuration(2); // of the next round
    qzTimer::alarm(0.75f);
    EXPECT_EQ(ticks, 0u);
    EXPECT_EQ(timer.getDelta(), 2) << "what it is late is not made up for";
    qz_theEventHandler->distributeEvents();
    EXPECT_EQ(ticks, 1u);
    timer.removeOutput("tick");
    qzTimer::alarm(2);
    qz_theEventHandler->distributeEvents();
    EXPECT_EQ(ticks, 1u);
}

} // namespace
