// The line by which the library identifies itself: its name in 33 columns, its
// version and, in parentheses, when it was built.
//
// Both go through the companion message library (util/Companion.h) and return
// what it returns: by default the number of characters.
#ifndef QZ_UTIL_VERSIONSTAMP_H
#define QZ_UTIL_VERSIONSTAMP_H

#include "util/Export.h"

// Not mangled: a program that opens the library at run time asks for them by name.
extern "C" {

QZ_EXPORT int liborvikqzds_print_verid();

// The caller sizes the buffer: 128 bytes are enough for the default.
QZ_EXPORT int liborvikqzds_sprintf_verid(char* buffer);
}

#endif
