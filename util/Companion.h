// What the library asks of its companion libraries.
//
// The library defines these functions weakly, so that it works alone. A program
// that defines one, or has a companion linked in that does, gets that one, and
// the library calls it too. A companion that is a shared library must come
// before this one on the link line: the first definition counts at run time,
// weak or not.
#ifndef QZ_UTIL_COMPANION_H
#define QZ_UTIL_COMPANION_H

#include "util/Export.h"

extern "C" {

// Splits a path into its directory, without the slash after it, and its leaf.
// Each is written NUL-terminated to a buffer of so many bytes. The library's own
// gives what pathdirname() and pathbasename() give, cut to the buffers, and
// returns 0, or -1 when it had to cut.
QZ_EXPORT int fileutl_strip_leaf(const char* path, unsigned int directoryCapacity, char* directory,
                                 unsigned int leafCapacity, char* leaf);

// A printf-style message. What destination and selector choose is the
// companion's business. The library's own prints on standard output, ignores
// both and returns the number of characters.
QZ_EXPORT int imsg_print(int destination, const char* format, int selector, ...)
    __attribute__((format(printf, 2, 4)));

// The same into a buffer that the caller sizes (or into what the companion takes
// for a destination).
QZ_EXPORT int imsg_sprintf(char* buffer, const char* format, int selector, ...)
    __attribute__((format(printf, 2, 4)));
}

#endif
