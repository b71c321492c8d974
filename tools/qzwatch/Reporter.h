// Reporter: shows how far the counting is, and what came out in the end.
//
// Inputs "lines" (see Lines.h) and "tick", for a timer: a line of progress on
// standard error, where a terminal has one line rewritten.
#ifndef QZ_TOOLS_QZWATCH_REPORTER_H
#define QZ_TOOLS_QZWATCH_REPORTER_H

#include <chrono>

#include "event/Obj.h"
#include "util/VoidPtrArray.h"

namespace qzwatch {

class Counter;
class Lines;

class Reporter : public qzObj {
  public:
    // Of these Counter*.
    explicit Reporter(const qzVoidPtrArray& counters);
    ~Reporter() override;
    const char* className() const override { return "Reporter"; }

    void showProgress();
    void endProgress();
    // On standard output: each counter with that many of its highest keys.
    void showTable(unsigned highest) const;

  private:
    using Clock = std::chrono::steady_clock;

    static void receive(Reporter* reporter, const Lines& lines);
    static void tick(Reporter* reporter) { reporter->showProgress(); }

    const qzVoidPtrArray& counters;
    const bool onTerminal;
    const Clock::time_point start = Clock::now();
    Clock::time_point last = start;
    double bytes = 0;
    double bytesAtLast = 0;
};

} // namespace qzwatch

#endif
