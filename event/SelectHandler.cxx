#include "event/SelectHandler.h"

#include <unistd.h>

#include "event/Exec.h"

qzSelectHandler::qzSelectHandler() : descriptor(-1), reading(1), writing(0), exceptioning(0) {}

qzSelectHandler::~qzSelectHandler() {
    qzExec::forgetReadiness(this);
    ::close(descriptor);
}

void qzSelectHandler::handleWrite() {}

void qzSelectHandler::handleException() {}
