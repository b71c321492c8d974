// The dispatcher, with a select() and a times() of the tests' own.
#include "event/Exec.h"

#include <fcntl.h>
#include <sys/times.h>
#include <unistd.h>

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
    ~Executive() { qz_theExecutive = programs; }
    qzExec* const programs;
};

// The numbers are beyond the descriptors that a test program has open.
struct Handler : qzSelectHandler {
    explicit Handler(int number, Call call = nullptr) : call(call) {
        descriptor = number;
        exceptioning = 1;
        writing = call != nullptr;
    }
    const char* className() const override { return "Handler"; }
    // Of copies, as the call may destroy this handler.
    void handleRead() override { Call{call}('r'); }
    void handleWrite() override { Call{call}('w'); }
    void handleException() override { Call{call}('x'); }
    Call call;
};

std::string calls;

struct Program : qzApplication {
    const char* className() const override { return "Program"; }
    void initialize(int, char**) override {}
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
    return onSelect(limit, {r, w, x}, *timeout);
}

extern "C" clock_t times(struct tms*) noexcept { return static_cast<clock_t>(onTimes()); }

TEST(qzExec, WithoutHandlersAPassOnlyDistributes) {
    Executive exec;
    Node node("a");
    node.connectTo(node);
    node.send(1);
    qzTimer timer(0);
    timer.startTimer(0);
    onSelect = [](auto...) { return ADD_FAILURE(), 0; };
    exec.addPreSelectFunc([] { ADD_FAILURE(); });
    EXPECT_FALSE(exec.willBlock());
    exec.loop(); // one pass, as there is no application
    EXPECT_EQ(exec.trace, "a1 ");
    EXPECT_TRUE(timer.isTimerTicking());
}

// With t, two timers of 0.5 and 0.875 seconds; with q, an event in the queue.
TEST(qzExec, FullWaitCountsAsTheTimersDelta) {
    const struct {
        float maxWait;
        std::string with;
        int ready;
        unsigned readings[2]; // of the clock
        double wait;
        float delta; // of the first timer, after the pass
    } rows[] = {
        {9, "t", 0, {0, 700}, 0.5, 0.375f}, // whatever the clock says
        {9, "t", 1, {~15u, 9}, 0.5, 0.25f}, // across its wrap
        {9, "t", 1, {0, 50}, 0.5, 0.375f},
        {9, "t", -1, {0, 100}, 0.5, 0},
        {0.25f, "t", 0, {0, 25}, 0.25, 0.25f},
        {9, "tq", 0, {0, 25}, 0, 0.25f},
        {2.75f, "", 0, {}, 2.75, 0},
        {-0.5f, "", 0, {}, 0, 0},
        {1e30f, "", 1, {}, 1e8, 0},
    };
    Executive exec;
    Node node("a");
    node.connectTo(node);
    Handler handler(90);
    exec.addSelectHandler(&handler);
    for (const auto& row : rows) {
        handler.call = [&](char) { EXPECT_EQ(row.ready, 1); };
        qzTimer first(0), second(0);
        if (row.with != "") first.startTimer(0.5f), second.startTimer(0.875f);
        if (row.with == "tq") node.send(1);
        unsigned readings = 0;
        onTimes = [&] { return errno = ENOENT, row.readings[readings++]; };
        onSelect = [&](int limit, auto& sets, timeval& timeout) {
            EXPECT_EQ(limit, 91);
            EXPECT_TRUE(sets[0] && !sets[1] && sets[2]);
            EXPECT_EQ(timeout.tv_sec + timeout.tv_usec / 1e6, row.wait);
            errno = EINTR;
            return row.ready;
        };
        AllocationCounter counter;
        exec.poll(row.maxWait);
        EXPECT_TRUE(counter.counts().allocations == 0 || row.with != "" ||
                    AllocationCounter::obstacle());
        EXPECT_EQ(errno, EINTR);
        EXPECT_EQ(qzTimer::activeTimers ? qzTimer::activeTimers->getDelta() : 0, row.delta);
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
    std::unique_ptr<Handler> low;
    const auto add = [&](char what) { log += what; };
    Handler high(91, add), other(91, add);
    const struct {
        const char* calls;
        Action act;
    } rows[] = {
        {"RWX", [&] { exec.removeSelectHandler(&high); }},
        {"RWXrwx", [&] { exec.addSelectHandler(&other); }},
        {"Rrwx", [&] { exec.removeSelectHandler(low.get()), low = nullptr; }},
        {"RWXrwx", [&] { exec.poll(0); }}, // which serves the rest
    };
    for (const auto& row : rows) {
        low = std::make_unique<Handler>(90, [&](char what) {
            log += static_cast<char>(what - 'a' + 'A');
            if (log == "R") row.act();
        });
        exec.addSelectHandler(low.get());
        exec.addSelectHandler(&high);
        onSelect = [&](int, auto& sets, timeval&) {
            if (log != "") FD_CLR(90, sets[0]);
            return log == "" ? 6 : 5;
        };
        log.clear();
        exec.poll(0);
        EXPECT_EQ(log, row.calls);
    }
}

TEST(qzExec, WalksSkipWhatHasLeftAndWhatCameMeanwhile) {
    Executive exec;
    Handler handler(90);
    exec.addSelectHandler(&handler);
    for (qzStubFunc function : {changeFunctions, log<'2'>, log<'2'>, log<'3'>})
        exec.addPreSelectFunc(function);
    exec.addPostSelectFunc(log<','>);
    onSelect = [](auto...) { return 0; };
    exec.poll(0);
    exec.poll(0);
    EXPECT_EQ(calls, "123,232,");

    Program opened;
    exec.open();
    auto idle = std::make_unique<Program>();
    exec.close();
    EXPECT_TRUE(!exec.contains(&opened) && exec.contains(idle.get()));
    onSelect = [&](auto...) { return idle = nullptr, 0; };
    exec.loop();
}
