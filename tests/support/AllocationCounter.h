// AllocationCounter: what the process asked of malloc since the counter was made.
//
// For costs that a header promises ("one allocation"). The whole process is
// counted: take the figures before the next assertion, which may allocate, too.
#ifndef QZ_TESTS_SUPPORT_ALLOCATIONCOUNTER_H
#define QZ_TESTS_SUPPORT_ALLOCATIONCOUNTER_H

struct AllocationCounts {
    unsigned allocations; // malloc, calloc, realloc of null
    unsigned resizes;     // realloc of a block
    unsigned releases;    // free of a block
};

class AllocationCounter {
  public:
    AllocationCounter() : start(total()) {}

    // Null, or why nothing is counted here: the test is to be skipped with it.
    static const char* obstacle();

    AllocationCounts counts() const {
        const AllocationCounts now = total();
        return {now.allocations - start.allocations, now.resizes - start.resizes,
                now.releases - start.releases};
    }

  private:
    static AllocationCounts total();

    AllocationCounts start;
};

#endif
