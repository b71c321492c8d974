// AllocationCounter: what the process asked of malloc since the counter was made,
// for costs that a header promises. Take the counts before the next assertion,
// which may allocate, too.
#ifndef QZ_TESTS_SUPPORT_ALLOCATIONCOUNTER_H
#define QZ_TESTS_SUPPORT_ALLOCATIONCOUNTER_H

struct AllocationCounts {
    unsigned allocations, resizes, releases; // of blocks: null is not counted
};

class AllocationCounter {
  public:
    // Null, or why nothing is counted here: the test is to be skipped with it.
    static const char* obstacle();
    AllocationCounts counts() const;

  private:
    static AllocationCounts total();
    const AllocationCounts start = total();
};

#endif
