// The peers' loops, and a descriptor handler of ours, for the benchmarks of passes and
// of timers.
#ifndef QZ_BENCH_EVENT_LOOPS_H
#define QZ_BENCH_EVENT_LOOPS_H

#include <algorithm>
#include <vector>

#include <event2/event.h>
#include <uv.h>

#include "event/Exec.h"
#include "event/SelectHandler.h"

// Leaves the descriptor open.
template <long& calls> struct CountingHandler : qzSelectHandler {
    explicit CountingHandler(int fd) {
        descriptor = fd;
        qz_theExecutive->addSelectHandler(this);
    }
    ~CountingHandler() override {
        qz_theExecutive->removeSelectHandler(this);
        descriptor = -1;
    }
    const char* className() const override { return "CountingHandler"; }
    void handleRead() override { ++calls; }
};

template <class Handle> class UvLoop {
  public:
    explicit UvLoop(unsigned n) : handles(n) { uv_loop_init(&loop); }
    UvLoop(const UvLoop&) = delete;
    UvLoop& operator=(const UvLoop&) = delete;
    ~UvLoop() {
        for (Handle& handle : handles)
            uv_close(reinterpret_cast<uv_handle_t*>(&handle), nullptr);
        uv_run(&loop, UV_RUN_DEFAULT);
        uv_loop_close(&loop);
    }
    void pass() { uv_run(&loop, UV_RUN_NOWAIT); }

  protected:
    uv_loop_t loop;
    std::vector<Handle> handles;
};

class EventBase {
  public:
    explicit EventBase(event_base* base) : base(base) {}
    EventBase(const EventBase&) = delete;
    EventBase& operator=(const EventBase&) = delete;
    ~EventBase() {
        std::for_each(events.begin(), events.end(), event_free);
        event_base_free(base);
    }
    void pass() { event_base_loop(base, EVLOOP_ONCE | EVLOOP_NONBLOCK); }

  protected:
    event_base* base;
    std::vector<event*> events;
};

#endif
