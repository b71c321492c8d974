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
#include <event2/event.h>
#include <uv.h>

#include "event/Exec.h"
#include "event/GlobalOrder.h"
#include "event/SelectHandler.h"

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
            handlers.emplace_back(new Handler(fd));
    }
    void pass() { qz_theExecutive->poll(0); }

  private:
    struct Handler : qzSelectHandler {
        explicit Handler(int fd) {
            descriptor = fd;
            qz_theExecutive->addSelectHandler(this);
        }
        ~Handler() override {
            qz_theExecutive->removeSelectHandler(this);
            descriptor = -1; // the pipes close it
        }
        const char* className() const override { return "Handler"; }
        void handleRead() override { ++served; }
    };
    std::vector<std::unique_ptr<Handler>> handlers;
};

template <bool withSelect> class Libevent {
  public:
    explicit Libevent(const Pipes& pipes) {
        event_config* const config = event_config_new();
        if (withSelect) {
            event_config_avoid_method(config, "epoll");
            event_config_avoid_method(config, "poll");
        }
        base = event_base_new_with_config(config);
        event_config_free(config);
        for (const int fd : pipes.reading) {
            events.push_back(event_new(
                base, fd, EV_READ | EV_PERSIST, [](int, short, void*) { ++served; }, nullptr));
            event_add(events.back(), nullptr);
        }
    }
    Libevent(const Libevent&) = delete;
    Libevent& operator=(const Libevent&) = delete;
    ~Libevent() {
        std::for_each(events.begin(), events.end(), event_free);
        event_base_free(base);
    }
    void pass() { event_base_loop(base, EVLOOP_ONCE | EVLOOP_NONBLOCK); }

  private:
    event_base* base;
    std::vector<event*> events;
};
using LibeventSelect = Libevent<true>;
using LibeventOwn = Libevent<false>;

class Libuv {
  public:
    explicit Libuv(const Pipes& pipes) : polls(pipes.reading.size()) {
        uv_loop_init(&loop);
        for (unsigned i = 0; i < polls.size(); ++i) {
            uv_poll_init(&loop, &polls[i], pipes.reading[i]);
            uv_poll_start(&polls[i], UV_READABLE, [](uv_poll_t*, int, int) { ++served; });
        }
    }
    Libuv(const Libuv&) = delete;
    Libuv& operator=(const Libuv&) = delete;
    ~Libuv() {
        for (uv_poll_t& poll : polls)
            uv_close(reinterpret_cast<uv_handle_t*>(&poll), nullptr);
        uv_run(&loop, UV_RUN_DEFAULT);
        uv_loop_close(&loop);
    }
    void pass() { uv_run(&loop, UV_RUN_NOWAIT); }

  private:
    uv_loop_t loop;
    std::vector<uv_poll_t> polls;
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
