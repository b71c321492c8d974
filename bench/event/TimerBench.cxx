// Starting, stopping and expiring timers, beside libuv and libevent, which keep
// them in heaps. Durations are in no order.
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
#include <event2/event.h>
#include <uv.h>

#include "event/Exec.h"
#include "event/GlobalOrder.h"
#include "event/SelectHandler.h"
#include "event/Timer.h"

namespace {

const unsigned longest = 16; // milliseconds
long ticks;

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
        idle.reset(new Idle);
        for (unsigned i = 0; i < n; ++i)
            timers.emplace_back(new Timer);
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
    // A loop without a descriptor would not wait.
    struct Idle : qzSelectHandler {
        Idle() {
            if (pipe(ends) == 0) descriptor = ends[0];
            qz_theExecutive->addSelectHandler(this);
        }
        ~Idle() override {
            qz_theExecutive->removeSelectHandler(this);
            close(ends[1]);
        }
        const char* className() const override { return "Idle"; }
        void handleRead() override {}
        int ends[2];
    };
    std::unique_ptr<Idle> idle;
    std::vector<std::unique_ptr<Timer>> timers;
};

class Libuv {
  public:
    explicit Libuv(unsigned n) : timers(n) {
        uv_loop_init(&loop);
        for (uv_timer_t& timer : timers)
            uv_timer_init(&loop, &timer);
    }
    Libuv(const Libuv&) = delete;
    Libuv& operator=(const Libuv&) = delete;
    ~Libuv() {
        for (uv_timer_t& timer : timers)
            uv_close(reinterpret_cast<uv_handle_t*>(&timer), nullptr);
        uv_run(&loop, UV_RUN_DEFAULT);
        uv_loop_close(&loop);
    }
    void start(unsigned i, unsigned milliseconds) {
        uv_timer_start(
            &timers[i], [](uv_timer_t*) { ++ticks; }, milliseconds, 0);
    }
    void stop(unsigned i) { uv_timer_stop(&timers[i]); }
    void expire() { uv_run(&loop, UV_RUN_NOWAIT); }

  private:
    uv_loop_t loop;
    std::vector<uv_timer_t> timers;
};

class Libevent {
  public:
    explicit Libevent(unsigned n) : base(event_base_new()) {
        for (unsigned i = 0; i < n; ++i)
            timers.push_back(evtimer_new(
                base, [](int, short, void*) { ++ticks; }, nullptr));
    }
    Libevent(const Libevent&) = delete;
    Libevent& operator=(const Libevent&) = delete;
    ~Libevent() {
        for (event* timer : timers)
            event_free(timer);
        event_base_free(base);
    }
    void start(unsigned i, unsigned milliseconds) {
        const timeval duration = {0, static_cast<suseconds_t>(milliseconds) * 1000};
        evtimer_add(timers[i], &duration);
    }
    void stop(unsigned i) { evtimer_del(timers[i]); }
    void expire() { event_base_loop(base, EVLOOP_ONCE | EVLOOP_NONBLOCK); }

  private:
    event_base* base;
    std::vector<event*> timers;
};

std::vector<unsigned> durations(unsigned n) {
    std::mt19937 random(4711);
    std::vector<unsigned> milliseconds;
    for (unsigned i = 0; i < n; ++i)
        milliseconds.push_back(1 + random() % longest);
    return milliseconds;
}

template <class Timers> void BM_StartStop(benchmark::State& state) {
    const std::vector<unsigned> milliseconds = durations(state.range(0));
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
    const std::vector<unsigned> milliseconds = durations(state.range(0));
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

void numbers(benchmark::internal::Benchmark* b) { b->Arg(10)->Arg(100)->Arg(1000); }

BENCHMARK_TEMPLATE(BM_StartStop, Qz)->Apply(numbers);
BENCHMARK_TEMPLATE(BM_StartStop, Libuv)->Apply(numbers);
BENCHMARK_TEMPLATE(BM_StartStop, Libevent)->Apply(numbers);
BENCHMARK_TEMPLATE(BM_StartExpire, Qz)->Apply(numbers);
BENCHMARK_TEMPLATE(BM_StartExpire, Libuv)->Apply(numbers);
BENCHMARK_TEMPLATE(BM_StartExpire, Libevent)->Apply(numbers);

} // namespace
