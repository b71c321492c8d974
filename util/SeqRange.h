// qzSeqRange: a run of consecutive numbers.
#ifndef QZ_UTIL_SEQRANGE_H
#define QZ_UTIL_SEQRANGE_H

#include "util/Export.h"

struct QZ_EXPORT qzSeqRange {
    unsigned start;  // first number of the run
    unsigned length; // numbers in the run
};

static_assert(sizeof(qzSeqRange) == 8, "two 32-bit fields");

#endif
