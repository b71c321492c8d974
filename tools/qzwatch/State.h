// State: the file in which counts are kept from one run to the next.
//
// A stream of the binary object format, one graph for each Counter. It is replaced
// as a whole: written to a temporary file beside it, brought to the disk and then
// renamed. A symbolic link stays one: what it leads to is replaced.
#ifndef QZ_TOOLS_QZWATCH_STATE_H
#define QZ_TOOLS_QZWATCH_STATE_H

#include "util/Path.h"
#include "util/VoidPtrArray.h"

namespace qzwatch {

class State {
  public:
    explicit State(const qzPath& path) : path(path) {}

    // Each is false when it has complained. A file that is not there yet is
    // loaded as nothing. counters holds Counter*, which are the caller's.
    bool load(qzVoidPtrArray& counters) const;
    bool save(const qzVoidPtrArray& counters) const;

  private:
    bool canBeMade() const;

    const qzPath path;
};

} // namespace qzwatch

#endif
