// A program that brings companions of its own: the library must call these and
// not its defaults. Returns 0 when it does.
#include "util/Companion.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "util/Path.h"
#include "util/VersionStamp.h"

namespace {

int faults = 0;

void check(bool holds, const char* what) {
    if (holds) return;
    std::printf("CompanionOverride: %s\n", what);
    ++faults;
}

} // namespace

int imsg_print(int destination, const char* format, int selector, ...) {
    va_list args;
    va_start(args, selector);
    const int width = va_arg(args, int);
    const char* const name = va_arg(args, const char*);
    const char* const version = va_arg(args, const char*);
    const char* const stamp = va_arg(args, const char*);
    va_end(args);
    check(destination == 0, "the destination is not 0");
    check(std::strcmp(format, "%-*s %s (%s)\n") == 0, "the format is another");
    check(selector == -1, "the selector is not -1");
    check(width == 33, "the width is not 33");
    check(std::strcmp(name, "liborvikqzds") == 0, "the name is another");
    check(*version && *stamp, "version or stamp is missing");
    return 4711;
}

int fileutl_strip_leaf(const char* path, unsigned int directoryCapacity, char* directory,
                       unsigned int leafCapacity, char* leaf) {
    check(std::strcmp(path, "a/b") == 0, "the path is another");
    check(directoryCapacity == 4 && leafCapacity == 4, "the capacities are not the path's size");
    check(leaf[0] == 0, "the leaf would keep what it held");
    std::strcpy(directory, "own");
    return 42;
}

int main() {
    check(liborvikqzds_print_verid() == 4711, "the library calls its own imsg_print");
    qzPath directory, leaf("old");
    check(qzPath("a/b").split(&directory, &leaf) == 42,
          "the library calls its own fileutl_strip_leaf");
    check(directory == "own" && leaf == "", "split does not give what the companion wrote");
    char line[128];
    check(liborvikqzds_sprintf_verid(line) > 33 && std::strncmp(line, "liborvikqzds ", 13) == 0,
          "imsg_sprintf, which is not replaced, does not work");
    return faults ? 1 : 0;
}
