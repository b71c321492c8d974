#include "util/StackBuffer.h"

#include "util/detail/RawMemory.h"

qzStackBuffer::qzStackBuffer(unsigned growBy)
    : next(inbuf), end(inbuf + sizeof inbuf), base(inbuf), growBy(growBy ? growBy : 500) {}

qzStackBuffer::qzStackBuffer(const qzStackBuffer& other) : growBy(other.growBy) { copyFrom(other); }

qzStackBuffer& qzStackBuffer::operator=(const qzStackBuffer& other) {
    if (this == &other) return *this;
    if (base != inbuf) qzRawFree(base);
    growBy = other.growBy;
    copyFrom(other);
    return *this;
}

qzStackBuffer::~qzStackBuffer() {
    if (base != inbuf) qzRawFree(base);
}

void qzStackBuffer::copyFrom(const qzStackBuffer& other) {
    const unsigned room = other.capacity();
    base = room <= sizeof inbuf ? inbuf : static_cast<char*>(qzRawAlloc(room));
    qzRawMove(base, other.base, other.length());
    next = base + other.length();
    end = base + room;
}

void qzStackBuffer::put(const char* s, unsigned n) {
    const unsigned room = static_cast<unsigned>(end - next);
    if (n > room) {
        const bool inside = qzRawInside(s, base, capacity());
        const auto offset = inside ? s - base : 0;
        grow(n - room);
        if (inside) s = base + offset;
    }
    qzRawMove(next, s, n);
    next += n;
}

void qzStackBuffer::grow(unsigned n) {
    const unsigned used = length();
    const unsigned extra = n > growBy ? n : growBy;
    const unsigned room = capacity() + extra;
    if (room < extra) qzRawExhausted(); // 4 GB: no pointer could span it
    if (base == inbuf) {
        base = static_cast<char*>(qzRawAlloc(room));
        qzRawMove(base, inbuf, sizeof inbuf);
    } else {
        base = static_cast<char*>(qzRawResize(base, room));
    }
    next = base + used;
    end = base + room;
}
