// Starting, stopping and expiring timers, beside libuv and libevent, which keep
// them in heaps. Durations are in no order, or all the same.
//
// Nobody waits for them to be due: the peers read a clock that is put forward. Ours
// expire by a call of the alarm, as the main loop makes it; a pass without timers is
// added, as expiry in the peers is a pass of their loops.
#include <dlfcn.h>
#include <time.h>
#include <unistd.h>

#include <memory>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>

#include "event/GlobalOrder.h"
#include "event/Loops.h"
#include "event/Timer.h"

namespace {

const unsigned longest = 16; // milliseconds
long ticks;
long wakes;

bool onLoopsClock = false;
timespec passed = {0, 0}; // on the loops' clock, beside the system's

void addTo(timespec& time, const timespec& more) {
    const long second = 1000000000;
    time.tv_sec += more.tv_sec;
    time.tv_nsec += more.tv_nsec;
    if (time.tv_nsec < second) return;
    time.tv_nsec -= second;
    ++time.tv_sec;
}

void passMilliseconds(unsigned n) { addTo(passed, {0, static_cast<long>(n) * 1000000}); }

} // namespace

// In place of the system's. Google Benchmark reads the clock when it is not the
// loops' turn.
extern "C" int clock_gettime(clockid_t clock, timespec* now) noexcept {
    static int (*const system)(clockid_t, timespec*) =
        reinterpret_cast<int (*)(clockid_t, timespec*)>(dlsym(RTLD_NEXT, "clock_gettime"));
    const int failure = system(clock, now);
    if (onLoopsClock && !failure) addTo(*now, passed);
    return failure;
}

namespace {

class Qz {
  public:
    explicit Qz(unsigned n) {
        qzInitializeToolkit();
        if (pipe(ends) == 0) idle.reset(new CountingHandler<wakes>(ends[0]));
        for (unsigned i = 0; i < n; ++i)
            timers.emplace_back(new Timer);
    }
    Qz(const Qz&) = delete;
    Qz& operator=(const Qz&) = delete;
    ~Qz() {
        close(ends[0]);
        close(ends[1]);
    }
    void start(unsigned i, unsigned milliseconds) {
        timers[i]->startTimer(static_cast<float>(milliseconds) / 1000);
    }
    void stop(unsigned i) { timers[i]->stopTimer(); }
    void expire() {
        qzTimer::alarm(static_cast<float>(longest + 1) / 1000);
        qz_theExecutive->poll(0);
    }

  private:
    struct Timer : qzTimer {
        Timer() : qzTimer(0) {}
        void tick() override { ++ticks; }
    };
    int ends[2];
    std::unique_ptr<qzSelectHandler> idle; // a loop without a descriptor would not wait
    std::vector<std::unique_ptr<Timer>> timers;
};

class Libuv : public UvLoop<uv_timer_t> {
  public:
    explicit Libuv(unsigned n) : UvLoop(n) {
        for (uv_timer_t& timer : handles)
            uv_timer_init(&loop, &timer);
    }
    void start(unsigned i, unsigned milliseconds) {
        uv_timer_start(
            &handles[i], [](uv_timer_t*) { ++ticks; }, milliseconds, 0);
    }
    void stop(unsigned i) { uv_timer_stop(&handles[i]); }
    void expire() { pass(); }
};

class Libevent : public EventBase {
  public:
    explicit Libevent(unsigned n) : EventBase(event_base_new()) {
        for (unsigned i = 0; i < n; ++i)
            events.push_back(evtimer_new(
                base, [](int, short, void*) { ++ticks; }, nullptr));
    }
    void start(unsigned i, unsigned milliseconds) {
        const timeval duration = {0, static_cast<suseconds_t>(milliseconds) * 1000};
        evtimer_add(events[i], &duration);
    }
    void stop(unsigned i) { evtimer_del(events[i]); }
    void expire() { pass(); }
};

// The milliseconds of the timers: 1 to `most` each.
std::vector<unsigned> durations(const benchmark::State& state) {
    const unsigned n = state.range(0), most = state.range(1);
    std::mt19937 random(4711);
    std::vector<unsigned> milliseconds;
    while (milliseconds.size() < n)
        milliseconds.push_back(1 + random() % most);
    return milliseconds;
}

template <class Timers> void BM_StartStop(benchmark::State& state) {
    const std::vector<unsigned> milliseconds = durations(state);
    Timers timers(milliseconds.size());
    for (auto _ : state) {
        for (unsigned i = 0; i < milliseconds.size(); ++i)
            timers.start(i, milliseconds[i]);
        for (unsigned i = 0; i < milliseconds.size(); ++i)
            timers.stop(i);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class Timers> void BM_StartExpire(benchmark::State& state) {
    const std::vector<unsigned> milliseconds = durations(state);
    Timers timers(milliseconds.size());
    ticks = 0;
    for (auto _ : state) {
        onLoopsClock = true;
        for (unsigned i = 0; i < milliseconds.size(); ++i)
            timers.start(i, milliseconds[i]);
        passMilliseconds(longest + 1);
        timers.expire();
        onLoopsClock = false;
    }
    if (ticks != state.iterations() * state.range(0)) state.SkipWithError("not all expired");
    state.SetItemsProcessed(ticks);
}

void numbers(benchmark::internal::Benchmark* b) {
    b->ArgNames({"timers", "most"});
    b->ArgsProduct({{10, 100, 1000}, {1, longest}});
}

BENCHMARK_TEMPLATE(BM_StartStop, Qz)->Apply(numbers);
BENCHMARK_TEMPLATE(BM_StartStop, Libuv)->Apply(numbers);
BENCHMARK_TEMPLATE(BM_StartStop, Libevent)->Apply(numbers);
BENCHMARK_TEMPLATE(BM_StartExpire, Qz)->Apply(numbers);
BENCHMARK_TEMPLATE(BM_StartExpire, Libuv)->Apply(numbers);
BENCHMARK_TEMPLATE(BM_StartExpire, Libevent)->Apply(numbers);

} // namespace
