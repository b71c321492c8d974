// qzPath: a string that holds a path.
//
// Constructed, assigned and used as any qzStr.
#ifndef QZ_UTIL_PATH_H
#define QZ_UTIL_PATH_H

#include "util/Str.h"

class QZ_EXPORT qzPath : public qzStr {
  public:
    using qzStr::qzStr;
    using qzStr::operator=;
    qzPath() = default;
    qzPath(const qzStr& path) : qzStr(path) {}

    // The directory, without the slashes that end it, and the last component;
    // see fileutl_strip_leaf() in util/Companion.h, whose result this returns.
    // Either output may be this path.
    //
    // Deliberate: neither output gets longer than this path, so that the empty
    // path has an empty directory and not ".". Callers store both parts in
    // records of the path's size. Pinned by qzPath.PartsAreNoLongerThanThePath.
    int split(qzPath* directory, qzPath* leaf) const;
    qzPath leaf() const;
    qzPath directory() const;
};

static_assert(sizeof(qzPath) == sizeof(qzStr), "a path is stored wherever a string is");

#endif
