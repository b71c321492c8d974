#include "util/Fatal.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

void qzFatal(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::vfprintf(stderr, format, args);
    va_end(args);
    std::fputs("\n", stderr);
    std::fflush(stderr);
    std::abort();
}
