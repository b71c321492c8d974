// Options: the command line.
#ifndef QZ_TOOLS_QZWATCH_OPTIONS_H
#define QZ_TOOLS_QZWATCH_OPTIONS_H

#include "tools/qzwatch/Complaint.h"
#include "util/BoolArray.h"
#include "util/StrArray.h"

namespace qzwatch {

struct Options {
    // True to go on; else the status is what to end with, and everything has been
    // said. Looks at paths and directories, but reads nothing yet.
    bool read(int argc, char** argv);

    qzStrArray names; // of patterns, with their texts and whether these are literal
    qzStrArray texts;
    qzBoolArray literal;
    qzStrArray paths; // to be read
    bool follow = false;
    float interval = 0; // of progress, in seconds; 0 for none
    qzStr statePath;    // empty for none
    unsigned highest = 0;
    Status status = Good;

  private:
    bool take(int option, const char* argument);
    bool takePattern(const char* argument, bool isLiteral);
    bool takeDirectories(const char* argument);
    bool takePath(const char* path);
    bool refuse(const qzStr& name, const char* why);
    bool refuseOption(const char* element, bool isUnknown);
    bool misuse(const char* why);
};

} // namespace qzwatch

#endif
