#include "tools/qzwatch/Signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "event/DataTypes.h"
#include "event/Exec.h"
#include "util/Fatal.h"

namespace qzwatch {

namespace {

int writeEnd = -1;

void note(int) {
    const int before = errno;
    // A full pipe tells of a signal already.
    if (write(writeEnd, "", 1) < 0) errno = before;
}

void onSignal(int number, void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigaction(number, &action, nullptr);
}

bool isIgnored(int number) {
    struct sigaction action;
    return sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

} // namespace

Signals::Signals() : stop(addOutput("stop", qzDT_void)), hangsUp(!isIgnored(SIGHUP)) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) qzFatal("qzwatch: no pipe for signals");
    descriptor = ends[0];
    writeEnd = ends[1];
    qz_theExecutive->addSelectHandler(this);
    onSignal(SIGINT, note);
    onSignal(SIGTERM, note);
    if (hangsUp) onSignal(SIGHUP, note);
}

Signals::~Signals() {
    onSignal(SIGINT, SIG_DFL);
    onSignal(SIGTERM, SIG_DFL);
    if (hangsUp) onSignal(SIGHUP, SIG_DFL);
    close(writeEnd);
    qz_theExecutive->removeSelectHandler(this);
}

void Signals::handleRead() {
    char signals[64];
    if (read(descriptor, signals, sizeof signals) > 0) sendVoid(stop, qzSF_Queued);
}

} // namespace qzwatch
