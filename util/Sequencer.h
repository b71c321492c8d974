// qzSequencer: hands out numbers and records which are taken.
//
// Taken numbers are kept as a sorted list of runs, so that a long series costs
// one entry. Numbers are never given back.
//
// Trusted: a number is recorded only once; recording it again adds a run that
//     overlaps another.
// Cost: taking a number is constant, recording one linear in the runs.
#ifndef QZ_UTIL_SEQUENCER_H
#define QZ_UTIL_SEQUENCER_H

#include "util/RCObj.h"
#include "util/SeqRangeArray.h"

class QZ_EXPORT qzSequencer : public qzRCObj {
  public:
    qzSequencer();
    ~qzSequencer() override;

    // Takes a new number. Deliberate: the first run grows, downward until it
    // reaches 0 and then upward; gaps between later runs are not looked for.
    // Codes handed out in the same order are so the same in every process.
    // Pinned by qzSequencer.NumbersGrowTheFirstRun.
    unsigned operator()();
    // Records n as taken and returns it.
    unsigned operator()(unsigned n);

    // Joins run i with the next one if they touch.
    void trymerge(unsigned i);

  protected:
    qzSeqRangeArray ranges; // ascending by start
};

#endif
