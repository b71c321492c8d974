// qzFatal: the library's one way to end a process that cannot go on.
#ifndef QZ_UTIL_FATAL_H
#define QZ_UTIL_FATAL_H

#include "util/Export.h"

// Writes the printf-style message and a newline to standard error, flushes it
// and calls abort(). Standard output is not flushed.
[[noreturn]] QZ_EXPORT void qzFatal(const char* format, ...) __attribute__((format(printf, 1, 2)));

#endif
