#include "event/SelectHandler.h"

#include <unistd.h>

qzSelectHandler::qzSelectHandler() : descriptor(-1), reading(1), writing(0), exceptioning(0) {}

qzSelectHandler::~qzSelectHandler() { ::close(descriptor); }

void qzSelectHandler::handleWrite() {}

void qzSelectHandler::handleException() {}
