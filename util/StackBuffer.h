// qzStackBuffer: collects bytes, the first thousand without an allocation.
//
// Meant to live on the stack. The bytes stay in the object until they outgrow
// it and on the heap from then on, never moving back.
//
// Units: bytes. Nothing is terminated: add a NUL where one is wanted.
// Cost: growth is additive (growBy bytes at a time, or what a put() lacks), not
// doubling; choose growBy for the expected size.
#ifndef QZ_UTIL_STACKBUFFER_H
#define QZ_UTIL_STACKBUFFER_H

#include "util/Export.h"

class QZ_EXPORT qzStackBuffer {
  public:
    // growBy: the smallest step to grow by; 0 means 500.
    qzStackBuffer(unsigned growBy = 0);
    // The copy has the source's room, bytes and step.
    qzStackBuffer(const qzStackBuffer& other);
    qzStackBuffer& operator=(const qzStackBuffer& other);
    ~qzStackBuffer();

    void addc(char c) {
        if (next >= end) grow(growBy);
        *next++ = c;
    }
    // s may point into this buffer.
    void put(const char* s, unsigned n);

    // Makes room for max(n, growBy) bytes more than there is in all.
    void grow(unsigned n);

    unsigned length() const { return static_cast<unsigned>(next - base); }
    unsigned capacity() const { return static_cast<unsigned>(end - base); }
    char* data() { return base; }
    const char* data() const { return base; }
    // Forgets the bytes and keeps the room.
    void reset() { next = base; }

    char inbuf[1000];
    char* next; // write position
    char* end;  // one past the current storage
    char* base; // inbuf, or a block from malloc
    unsigned growBy;

  private:
    void copyFrom(const qzStackBuffer& other);
};

static_assert(sizeof(void*) != 4 || sizeof(qzStackBuffer) == 1016,
              "callers reserve stack space for it");

#endif
