#include "util/BoundingBox.h"

#include <algorithm>

namespace {

// One axis of a box. Sums wrap at 32 bits, so that boxes at the edge of the
// range give an answer rather than an overflow.
struct Span {
    int start;
    int extent;
};

int wrapAdd(int a, int b) { return static_cast<int>(static_cast<unsigned>(a) + b); }
int wrapSub(int a, int b) { return static_cast<int>(static_cast<unsigned>(a) - b); }

// The overlap where `late` starts no earlier than `early`.
Span overlapFrom(Span late, Span early) {
    const int earlyEnd = wrapAdd(early.start, early.extent);
    if (late.start >= earlyEnd) return {0, 0};
    return {late.start, std::min(wrapSub(earlyEnd, late.start), late.extent)};
}

Span intersectSpans(Span a, Span b) {
    return a.start > b.start ? overlapFrom(a, b) : overlapFrom(b, a);
}

int farEdge(Span span) { return static_cast<short>(wrapAdd(span.start, span.extent)); }

Span boundSpans(Span a, Span b) {
    if (b.extent == 0 && a.extent != 0) return a;
    if (a.extent == 0) return b;
    const int start = std::min(a.start, b.start);
    return {start, wrapSub(std::max(farEdge(a), farEdge(b)), start)};
}

} // namespace

qzBoundingBox qzBoundingBox::intersect(const qzBoundingBox& other) const {
    const Span across = intersectSpans({x, width}, {other.x, other.width});
    const Span down = intersectSpans({y, height}, {other.y, other.height});
    return {across.start, down.start, across.extent, down.extent};
}

qzBoundingBox qzBoundingBox::bound(const qzBoundingBox& other) const {
    const Span across = boundSpans({x, width}, {other.x, other.width});
    const Span down = boundSpans({y, height}, {other.y, other.height});
    return {across.start, down.start, across.extent, down.extent};
}
