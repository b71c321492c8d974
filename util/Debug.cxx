#include "util/Debug.h"

qzDebug* qz_theDebugger = nullptr;

qzDebug::qzDebug(unsigned char) {}

void qzDebug::parseOption(qzStr&) {}
