// LinePattern: a regular expression that is searched for in many lines at once.
//
// To look for each line's end first takes longer than most searches. So the
// expression is compiled in a form whose matches stay within a line: `.` and
// [^...] do not take a newline.
#ifndef QZ_TOOLS_QZWATCH_LINEPATTERN_H
#define QZ_TOOLS_QZWATCH_LINEPATTERN_H

#include "regex/RegEx.h"
#include "util/Str.h"

namespace qzwatch {

class LinePattern : public qzRegEx {
  public:
    explicit LinePattern(const char* pattern);
    ~LinePattern() override;

    // ^ and $ know the ends of a text, not of its lines: whether the pattern has
    // to be given the lines one by one.
    bool needsLinesAlone() const { return linesAlone; }
    // Appends what group 1 was in the last match, and a NUL; nothing if it was
    // not in it.
    void appendKey(qzStr& keys) const;

  private:
    bool linesAlone;
};

} // namespace qzwatch

#endif
