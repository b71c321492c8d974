// qzTmpSet: the result type of the binary set operators.
//
// A qzSet of plain bytes that cannot be transcribed beyond its counts.
#ifndef QZ_UTIL_TMPSET_H
#define QZ_UTIL_TMPSET_H

#include "util/Set.h"

class QZ_EXPORT qzTmpSet : public qzSet {
  public:
    explicit qzTmpSet(const qzSet& other) : qzSet(other) {}
    qzTmpSet(const qzTmpSet& other) : qzSet(other) {}
    ~qzTmpSet() override;

  protected:
    unsigned char xdrKey(qzTranscriber& t, void* key) override; // always false
};

#endif
