// The dispatcher, with a select() and a times() of the tests' own.
#include "event/Exec.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/times.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <memory>

#include "event/Application.h"
#include "event/Dataflow.h"
#include "event/SelectHandler.h"
#include "event/Timer.h"
#include "support/AllocationCounter.h"

namespace {

using Call = std::function<void(char)>;

std::function<int(int limit, fd_set* const (&sets)[3], timeval& timeout)> onSelect;
std::function<unsigned()> onTimes;

// An executive of the test's own in place of the program's.
struct Executive : Dataflow, qzExec {
    Executive() : programs(std::exchange(qz_theExecutive, this)) {}
    ~Executive() {
        qz_theExecutive = programs;
        onSelect = nullptr;
        onTimes = nullptr;
    }
    qzExec* const programs;
};

// The numbers are beyond the descriptors that a test program has open.
struct Handler : qzSelectHandler {
    explicit Handler(int number, bool reads = true, Call call = nullptr) : call(call) {
        descriptor = number;
        reading = exceptioning = reads;
        writing = reads && call;
    }
    const char* className() const override { return "Handler"; }
    void handleRead() override { handle('r'); }
    void handleWrite() override { handle('w'); }
    void handleException() override { handle('x'); }
    void handle(char what) {
        const Call copy = call; // which may destroy this handler
        copy(what);
    }
    Call call;
};

std::string calls;

struct Program : qzApplication {
    explicit Program(Action onOpen = [] {}) : onOpen(onOpen) {}
    const char* className() const override { return "Program"; }
    void initialize(int, char**) override { calls += 'i'; }
    void open() override { qzApplication::open(), calls += 'o', onOpen(); }
    void close() override { qzApplication::close(), calls += 'c'; }
    Action onOpen;
};

template <char Name> void log() { calls += Name; }
void changeFunctions() {
    calls += '1';
    qz_theExecutive->removePreSelectFunc(changeFunctions);
    qz_theExecutive->removePreSelectFunc(log<'2'>);
    qz_theExecutive->addPreSelectFunc(log<'2'>);
}

} // namespace

extern "C" int select(int limit, fd_set* r, fd_set* w, fd_set* x, timeval* timeout) {
#ifdef SYS__newselect
    const long number = SYS__newselect;
#else
    const long number = SYS_select;
#endif
    if (onSelect) return onSelect(limit, {r, w, x}, *timeout);
    return static_cast<int>(syscall(number, limit, r, w, x, timeout));
}

extern "C" clock_t times(struct tms* buffer) noexcept {
    return onTimes ? static_cast<clock_t>(onTimes()) : syscall(SYS_times, buffer);
}

TEST(qzExec, WithoutHandlersAPassOnlyDistributes) {
    Executive exec;
    Node node("a");
    node.connectTo(node);
    node.send(1);
    node.onReceipt = [&] { node.send(2); };
    qzTimer timer(0);
    timer.startTimer(0);
    onSelect = [](auto...) { return ADD_FAILURE(), 0; };
    exec.addPreSelectFunc([] { ADD_FAILURE(); });
    exec.addPostSelectFunc([] { ADD_FAILURE(); });
    EXPECT_FALSE(exec.willBlock());
    exec.loop(); // one pass, as there is no application
    EXPECT_EQ(exec.trace, "a1 ");
    exec.poll(1000);
    EXPECT_EQ(exec.trace, "a1 a2 ");
    EXPECT_TRUE(timer.isTimerTicking());
}

// With t, two timers of 0.5 and 0.75 seconds; with q, an event in the queue.
TEST(qzExec, FullWaitCountsAsTheTimersDelta) {
    const struct {
        float maxWait;
        std::string with;
        int ready;
        unsigned readings[2]; // of the clock
        long seconds, microseconds;
        int running; // timers, after the pass
        float delta; // of the first of them
    } rows[] = {
        {9, "t", 0, {0, 700}, 0, 500000, 1, 0.25f},  // whatever the clock says
        {9, "t", 1, {~15u, 9}, 0, 500000, 2, 0.25f}, // across its wrap
        {9, "t", 1, {0, 50}, 0, 500000, 1, 0.25f},     {9, "t", -1, {0, 75}, 0, 500000, 0, 0},
        {0.25f, "t", 0, {0, 25}, 0, 250000, 2, 0.25f}, {9, "tq", 0, {0, 25}, 0, 0, 2, 0.25f},
        {2.75f, "", 0, {}, 2, 750000, 0, 0},           {-0.5f, "", 0, {}, 0, 0, 0, 0},
        {1e30f, "", 1, {}, 100000000, 0, 0, 0},
    };
    Executive exec;
    Node node("a");
    node.connectTo(node);
    Handler handler(90), idle(95, false);
    exec.addSelectHandler(&handler);
    exec.addSelectHandler(&idle);
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        handler.call = [&](char) { EXPECT_EQ(row.ready, 1); };
        qzTimer first(0), second(0);
        if (row.with != "") first.startTimer(0.5f), second.startTimer(0.75f);
        if (row.with == "tq") node.send(1);
        unsigned readings = 0;
        onTimes = [&] { return errno = ENOENT, row.readings[readings++]; };
        onSelect = [&](int limit, auto& sets, timeval& timeout) {
            EXPECT_EQ(limit, 96);
            EXPECT_TRUE(sets[0] && !sets[1] && sets[2] && !FD_ISSET(95, sets[0]));
            EXPECT_EQ(timeout.tv_sec, row.seconds);
            EXPECT_EQ(timeout.tv_usec, row.microseconds);
            errno = EINTR;
            return row.ready;
        };
        AllocationCounter counter;
        exec.poll(row.maxWait);
        const unsigned allocations = counter.counts().allocations;
        EXPECT_EQ(errno, EINTR);
        EXPECT_EQ(first.isTimerTicking() + second.isTimerTicking(), row.running);
        EXPECT_EQ(qzTimer::activeTimers ? qzTimer::activeTimers->getDelta() : 0, row.delta);
        EXPECT_EQ(readings > 0, row.with != "");
        EXPECT_TRUE(allocations == 0 || row.with != "" || AllocationCounter::obstacle());
        onSelect = [&](auto...) { return row.ready; };
        EXPECT_EQ(exec.willBlock(), row.ready == 0);
    }
}

TEST(qzExec, TheTableGoesByDescriptor) {
    Executive exec;
    const int fd = dup(0);
    Handler replaced(90), handler(90), below(-1), above(100);
    auto last = std::make_unique<Handler>(fd);
    for (qzSelectHandler* added : {&replaced, &handler, last.get()})
        exec.addSelectHandler(added);
    for (qzSelectHandler* removed : {&below, &above, &replaced})
        exec.removeSelectHandler(removed);
    exec.updateSelectState();
    last = nullptr;
    EXPECT_EQ(fcntl(fd, F_GETFD), -1);
    const fd_set set = exec.getReadSet();
    EXPECT_TRUE(!FD_ISSET(90, &set) && FD_ISSET(fd, &set));
}

// The first call of the handler of 90, which logs capitals, acts on that of 91.
TEST(qzExec, HandlersAreLookedUpAgainBeforeEachCall) {
    Executive exec;
    std::string log;
    std::unique_ptr<Handler> low, high;
    const auto renew = [&] {
        if (high) exec.removeSelectHandler(high.get());
        high = nullptr; // the next one may take its address
        high = std::make_unique<Handler>(91, true, [&](char what) { log += what; });
        exec.addSelectHandler(high.get());
    };
    const auto remove = [&](const auto& handler) { exec.removeSelectHandler(handler.get()); };
    const struct {
        const char* calls;
        Action act;
    } rows[] = {
        {"RWXrwx", [] {}},
        {"RWX", [&] { remove(high); }},
        {"RWXrwx", [&] { remove(high), exec.addSelectHandler(high.get()); }},
        {"RWXrwx", renew},
        {"Rrwx", [&] { remove(low), low = nullptr; }},
        {"RWXrwx", [&] { exec.poll(0); }}, // which serves the rest
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        low = std::make_unique<Handler>(90, true, [&](char what) {
            log += static_cast<char>(std::toupper(what));
            if (log == "R") row.act();
        });
        exec.addSelectHandler(low.get());
        renew();
        onSelect = [&](int, auto& sets, timeval&) {
            if (log != "") FD_CLR(90, sets[0]);
            return log == "" ? 6 : 5;
        };
        log.clear();
        exec.poll(0);
        EXPECT_EQ(log, row.calls);
    }
    remove(high);
}

TEST(qzExec, WalksSkipWhatHasLeftAndWhatCameMeanwhile) {
    Executive exec;
    Handler handler(90);
    exec.addSelectHandler(&handler);
    for (qzStubFunc function : {changeFunctions, log<'2'>, log<'2'>, log<'3'>})
        exec.addPreSelectFunc(function);
    exec.addPostSelectFunc(log<','>);
    unsigned passes = 0;
    std::unique_ptr<Program> programs[4];
    onSelect = [&](auto...) {
        if (++passes == 4) programs[3] = nullptr;
        return 0;
    };
    exec.poll(0);
    exec.poll(0);
    EXPECT_EQ(std::exchange(calls, ""), "123,232,");

    programs[0] = std::make_unique<Program>([&] {
        programs[1] = nullptr;
        programs[3] = std::make_unique<Program>();
    });
    programs[1] = std::make_unique<Program>();
    programs[2] = std::make_unique<Program>();
    exec.initialize(0, nullptr);
    exec.open();
    exec.close();
    EXPECT_EQ(calls, "iiioocc");
    exec.loop();
    EXPECT_EQ(passes, 4u) << "until the last one leaves the register";
}
