// A program that brings companions of its own: the library must call these and
// not its defaults. Returns 0 when it does.
#include "util/Companion.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

#include "util/Path.h"
#include "util/VersionStamp.h"

namespace {

int faults = 0;

void check(bool holds, const char* what) {
    if (!holds) std::printf("CompanionOverride: wrong %s\n", what);
    faults += !holds;
}

} // namespace

int imsg_print(int destination, const char* format, int selector, ...) {
    va_list args;
    va_start(args, selector);
    check(destination == 0 && selector == -1, "destination or selector");
    check(format == std::string("%-*s %s (%s)\n") && va_arg(args, int) == 33, "format or width");
    check(va_arg(args, const char*) == std::string("liborvikqzds"), "name");
    va_end(args);
    return 4711;
}

int fileutl_strip_leaf(const char* path, unsigned int directoryCapacity, char* directory,
                       unsigned int leafCapacity, char* leaf) {
    check(path == std::string("a/b") && directoryCapacity == 4 && leafCapacity == 4,
          "path or size");
    check(*leaf == 0, "leaf, which would keep what it held");
    std::strcpy(directory, "own");
    return 42;
}

int main() {
    qzPath directory, leaf("old");
    check(liborvikqzds_print_verid() == 4711, "imsg_print");
    check(qzPath("a/b").split(&directory, &leaf) == 42, "fileutl_strip_leaf");
    check(directory == "own" && leaf == "", "parts of a path");
    return faults;
}
