#include "tools/qzwatch/Program.h"

#include <sys/resource.h>

#include <chrono>
#include <csignal>

#include "event/DataTypes.h"
#include "event/EventHandler.h"
#include "event/Exec.h"
#include "regex/SLinearPattern.h"
#include "tools/qzwatch/Counter.h"
#include "tools/qzwatch/LinePattern.h"
#include "tools/qzwatch/Matcher.h"
#include "tools/qzwatch/Reader.h"
#include "tools/qzwatch/State.h"
#include "xdr/BinaryGraphWriter.h"
#include "xdr/Transcriber.h"

namespace qzwatch {

namespace {

const float lookInterval = 0.25f; // seconds

// Timers see the time pass that the executive waits, and while there is a file to
// be read it never waits. Called before each wait, this lets the time pass for them
// that went by since the last one, if all of it was work.
void letWorkTimePass() {
    using Clock = std::chrono::steady_clock;
    static Clock::time_point last;
    static bool workOnly = false;
    const Clock::time_point now = Clock::now();
    if (workOnly) qzTimer::alarm(std::chrono::duration<float>(now - last).count());
    last = now;
    workOnly = qz_theEventHandler->getCount() > 0 || !qz_theExecutive->willBlock();
}

// Sleeping inputs stay open, however many they are.
void allowManyDescriptors() {
    rlimit limit;
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
}

} // namespace

Program::Program() : reporter(counters), progressTimer(1), lookTimer(1) {
    addInput("stop", qzDT_void, this, reinterpret_cast<void (*)()>(stop), 0);
    addInput("ended", qzDT_void, this, reinterpret_cast<void (*)()>(ended), 0);
}

Program::~Program() {
    for (unsigned i = 0; i < matchers.length(); ++i)
        delete static_cast<Matcher*>(matchers[i]);
    for (unsigned i = 0; i < counters.length(); ++i)
        delete static_cast<Counter*>(counters[i]);
}

void Program::leave(Status with) {
    status = with;
    qzApplication::close();
}

void Program::initialize(int argc, char** argv) {
    if (!options.read(argc, argv)) return leave(options.status);
    qzTranscriber::changeDefaultWriter(makeGraphWriter);
    if (options.statePath.length() && !State(options.statePath).load(counters)) {
        return leave(Refused);
    }
    inputs.reset(new Inputs(options.paths, options.follow));
    inputs->connect("ended", this, "ended");
    inputs->addReceiver(&reporter);
    for (unsigned i = 0; i < options.names.length(); ++i)
        addMatcher(i);
}

// The counter of that name, which the state may have brought along.
qzObj* Program::counter(const qzStr& name) {
    for (unsigned i = 0; i < counters.length(); ++i) {
        auto* const known = static_cast<Counter*>(counters[i]);
        if (known->getName() == name) return known;
    }
    auto* const added = new Counter(name);
    counters.append(added);
    return added;
}

void Program::addMatcher(unsigned i) {
    const char* const text = options.texts[i].c_str();
    LinePattern* const regex = options.literal[i] ? nullptr : new LinePattern(text);
    qzTextPattern* const pattern =
        regex ? static_cast<qzTextPattern*>(regex) : new qzSLinearPattern(text);
    auto* const matcher = new Matcher(pattern, regex);
    matchers.append(matcher);
    qzObj* const to = counter(options.names[i]);
    matcher->connect("matches", to, "matches");
    matcher->connect("keys", to, "keys");
    inputs->addReceiver(matcher);
}

void Program::open() {
    qzApplication::open();
    std::signal(SIGPIPE, SIG_IGN); // a failed write tells as much, and the state is saved
    std::signal(SIGXFSZ, SIG_IGN);
    allowManyDescriptors();
    signals.reset(new Signals);
    signals->connect("stop", this, "stop");
    qz_theExecutive->addPreSelectFunc(letWorkTimePass);
    if (options.interval > 0) {
        progressTimer.connect("tick", &reporter, "tick");
        progressTimer.startTimer(options.interval);
    }
    if (inputs->needLooks()) {
        lookTimer.connect("tick", inputs.get(), "look");
        lookTimer.startTimer(lookInterval);
    }
    inputs->start();
}

void Program::close() {
    if (Reader::anyFailed) status = Failed;
    if (options.statePath.length() && !State(options.statePath).save(counters)) status = Failed;
    if (options.interval > 0) reporter.endProgress();
    reporter.showTable(options.highest);
    leave(status);
}

} // namespace qzwatch
