// The two parts of a path, for all who split one.
#ifndef QZ_UTIL_DETAIL_PATHPARTS_H
#define QZ_UTIL_DETAIL_PATHPARTS_H

#include <cstddef>

// Not terminated. Lies in the path, or is a literal.
struct qzPathPart {
    const char* begin;
    std::size_t length;
};

// What pathdirname() and pathbasename() return.
qzPathPart qzDirectoryPart(const char* path);
qzPathPart qzLeafPart(const char* path);

#endif
