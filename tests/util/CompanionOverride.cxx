// A program that brings companions of its own: the library must call these and
// not its defaults. Returns 0 when it does, else the number of a failed check.
#include "util/Companion.h"

#include <cstdarg>
#include <cstdlib>

#include "util/Path.h"
#include "util/VersionStamp.h"

static void check(int number, bool holds) {
    if (!holds) std::exit(number);
}

int imsg_print(int destination, const char* format, int selector, ...) {
    va_list args;
    va_start(args, selector);
    check(1, destination == 0 && selector == -1);
    check(2, format == qzStr("%-*s %s (%s)\n") && va_arg(args, int) == 33);
    check(3, va_arg(args, const char*) == qzStr("liborvikqzds"));
    va_end(args);
    return 4711;
}

int fileutl_strip_leaf(const char* path, unsigned int directoryCapacity, char* directory,
                       unsigned int leafCapacity, char* leaf) {
    check(4, path == qzStr("a/b") && directoryCapacity == 4 && leafCapacity == 4);
    check(5, *leaf == 0); // which would keep what it held
    std::strcpy(directory, "own");
    return 42;
}

int main() {
    qzPath directory, leaf("old");
    check(6, liborvikqzds_print_verid() == 4711);
    check(7, qzPath("a/b").split(&directory, &leaf) == 42);
    check(8, directory == "own" && leaf == "");
}
