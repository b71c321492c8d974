#include "util/Companion.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

#include "util/detail/PathParts.h"
#include "util/detail/RawMemory.h"

namespace {

// Whether all of it fit.
bool put(qzPathPart part, char* buffer, unsigned capacity) {
    if (capacity == 0) return false;
    const std::size_t length = std::min<std::size_t>(part.length, capacity - 1);
    qzRawMove(buffer, part.begin, length);
    buffer[length] = 0;
    return length == part.length;
}

} // namespace

// Weak here and not in the header: a program that includes it defines strong
// ones.

__attribute__((weak)) int fileutl_strip_leaf(const char* path, unsigned int directoryCapacity,
                                             char* directory, unsigned int leafCapacity,
                                             char* leaf) {
    const bool directoryFits = put(qzDirectoryPart(path), directory, directoryCapacity);
    const bool leafFits = put(qzLeafPart(path), leaf, leafCapacity);
    return directoryFits && leafFits ? 0 : -1;
}

__attribute__((weak)) int imsg_print(int, const char* format, int selector, ...) {
    va_list args;
    va_start(args, selector);
    const int printed = std::vprintf(format, args);
    va_end(args);
    return printed;
}

__attribute__((weak)) int imsg_sprintf(char* buffer, const char* format, int selector, ...) {
    va_list args;
    va_start(args, selector);
    const int printed = std::vsprintf(buffer, format, args);
    va_end(args);
    return printed;
}
