// qzDictBucket: one entry of a dictionary: a node of a chain.
//
// Ownership: owns kvmem, from malloc; the dictionary owns its nodes.
#ifndef QZ_UTIL_DICTBUCKET_H
#define QZ_UTIL_DICTBUCKET_H

#include "util/ChainNode.h"

class QZ_EXPORT qzDictBucket : public qzChainNode {
  public:
    qzDictBucket(char* kvmem, qzDictBucket* next) : kvmem(kvmem), next(next) {}
    qzDictBucket(const qzDictBucket&) = delete;
    qzDictBucket& operator=(const qzDictBucket&) = delete;
    ~qzDictBucket();

    char* kvmem; // the key, and the value right behind it
    qzDictBucket* next;
};

static_assert(sizeof(qzDictBucket) == 2 * sizeof(void*), "a node is two words");

#endif
