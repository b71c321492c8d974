// Matcher: searches lines for one pattern.
//
// Input "lines". Outputs "matches", how many lines of a block match, and "keys",
// what group 1 was in each, terminated by a NUL; the latter only of a LinePattern.
#ifndef QZ_TOOLS_QZWATCH_MATCHER_H
#define QZ_TOOLS_QZWATCH_MATCHER_H

#include "event/Obj.h"

class qzTextPattern;

namespace qzwatch {

class LinePattern;
class Lines;

class Matcher : public qzObj {
  public:
    // Takes one reference on the pattern, and looks for keys if it is given as a
    // LinePattern, too.
    Matcher(qzTextPattern* pattern, const LinePattern* keyPattern);
    ~Matcher() override;
    const char* className() const override { return "Matcher"; }

  private:
    static void receive(Matcher* matcher, const Lines& lines) { matcher->search(lines); }
    void search(const Lines& lines);

    qzTextPattern* const pattern;
    const LinePattern* const keyPattern;
    qzOutputChannel* const matches;
    qzOutputChannel* const keys;
};

} // namespace qzwatch

#endif
