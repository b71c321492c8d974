#include "util/Debug.h"

qzDebug::qzDebug(unsigned char) {}

void qzDebug::parseOption(qzStr&) {}
