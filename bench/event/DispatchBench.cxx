// One pass of the main loop over pipes of which some are ready, beside libevent,
// with select() and with what it picks itself, libuv, and a plain select(). Pipes
// stay ready, as nobody reads them: a pass is the waiting and the calls, nothing
// else. Without ready pipes it is an idle pass.
#include <fcntl.h>
#include <sys/select.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>

#include "event/GlobalOrder.h"
#include "event/Loops.h"

namespace {

long served;

class Pipes {
  public:
    // So many of them, the ready ones spread among the others.
    Pipes(unsigned n, unsigned ready) {
        const int beyondTheTable = 200; // the dispatcher has room for low numbers only
        for (unsigned i = 0; i < n; ++i) {
            int ends[2];
            if (pipe(ends) != 0) std::abort();
            reading.push_back(ends[0]);
            writing.push_back(fcntl(ends[1], F_DUPFD, beyondTheTable));
            close(ends[1]);
        }
        for (unsigned i = 0; i < ready; ++i)
            if (write(writing[i * n / ready], "", 1) != 1) std::abort();
    }
    Pipes(const Pipes&) = delete;
    Pipes& operator=(const Pipes&) = delete;
    ~Pipes() {
        std::for_each(reading.begin(), reading.end(), close);
        std::for_each(writing.begin(), writing.end(), close);
    }

    std::vector<int> reading;
    std::vector<int> writing;
};

class Qz {
  public:
    explicit Qz(const Pipes& pipes) {
        qzInitializeToolkit();
        for (const int fd : pipes.reading)
            handlers.emplace_back(new CountingHandler<served>(fd));
    }
    void pass() { qz_theExecutive->poll(0); }

  private:
    std::vector<std::unique_ptr<qzSelectHandler>> handlers;
};

event_base* withSelect() {
    event_config* const config = event_config_new();
    event_config_avoid_method(config, "epoll");
    event_config_avoid_method(config, "poll");
    event_base* const base = event_base_new_with_config(config);
    event_config_free(config);
    return base;
}

template <event_base* (*make)()> class Libevent : public EventBase {
  public:
    explicit Libevent(const Pipes& pipes) : EventBase(make()) {
        for (const int fd : pipes.reading) {
            events.push_back(event_new(
                base, fd, EV_READ | EV_PERSIST, [](int, short, void*) { ++served; }, nullptr));
            event_add(events.back(), nullptr);
        }
    }
};
using LibeventSelect = Libevent<withSelect>;
using LibeventOwn = Libevent<event_base_new>;

class Libuv : public UvLoop<uv_poll_t> {
  public:
    explicit Libuv(const Pipes& pipes) : UvLoop(pipes.reading.size()) {
        for (unsigned i = 0; i < handles.size(); ++i) {
            uv_poll_init(&loop, &handles[i], pipes.reading[i]);
            uv_poll_start(&handles[i], UV_READABLE, [](uv_poll_t*, int, int) { ++served; });
        }
    }
};

// The floor: the system call and a look at each descriptor.
class PlainSelect {
  public:
    explicit PlainSelect(const Pipes& pipes) : fds(pipes.reading) {
        FD_ZERO(&set);
        for (const int fd : fds)
            FD_SET(fd, &set);
        limit = *std::max_element(fds.begin(), fds.end()) + 1;
    }
    void pass() {
        fd_set ready = set;
        timeval none = {0, 0};
        if (select(limit, &ready, nullptr, nullptr, &none) <= 0) return;
        for (const int fd : fds)
            if (FD_ISSET(fd, &ready)) ++served;
    }

  private:
    std::vector<int> fds;
    fd_set set;
    int limit;
};

template <class Loop> void BM_Pass(benchmark::State& state) {
    const Pipes pipes(state.range(0), state.range(1));
    Loop loop(pipes);
    for (int i = 0; i < 8; ++i) // some make room as they find more ready
        loop.pass();
    served = 0;
    for (auto _ : state)
        loop.pass();
    if (served != state.iterations() * state.range(1)) state.SkipWithError("not all were served");
    state.SetItemsProcessed(served);
}

void pipesAndReady(benchmark::internal::Benchmark* b) {
    b->ArgNames({"pipes", "ready"});
    b->Args({1, 0})->Args({10, 1})->Args({10, 10});
    b->Args({90, 0})->Args({90, 1})->Args({90, 10})->Args({90, 90});
}

BENCHMARK_TEMPLATE(BM_Pass, Qz)->Apply(pipesAndReady);
BENCHMARK_TEMPLATE(BM_Pass, LibeventSelect)->Apply(pipesAndReady);
BENCHMARK_TEMPLATE(BM_Pass, LibeventOwn)->Apply(pipesAndReady);
BENCHMARK_TEMPLATE(BM_Pass, Libuv)->Apply(pipesAndReady);
BENCHMARK_TEMPLATE(BM_Pass, PlainSelect)->Apply(pipesAndReady);

} // namespace
