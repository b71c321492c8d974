// qzSetBucket: one key of a set: a node of a chain.
//
// Ownership: owns kvmem, from malloc; the set owns its nodes.
#ifndef QZ_UTIL_SETBUCKET_H
#define QZ_UTIL_SETBUCKET_H

#include "util/ChainNode.h"

class QZ_EXPORT qzSetBucket : public qzChainNode {
  public:
    qzSetBucket(char* kvmem, qzSetBucket* next) : kvmem(kvmem), next(next) {}
    qzSetBucket(const qzSetBucket&) = delete;
    qzSetBucket& operator=(const qzSetBucket&) = delete;
    ~qzSetBucket();

    char* kvmem; // the key
    qzSetBucket* next;
};

static_assert(sizeof(qzSetBucket) == 2 * sizeof(void*), "a node is two words");

#endif
