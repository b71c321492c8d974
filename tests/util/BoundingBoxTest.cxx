#include "util/BoundingBox.h"

#include <gtest/gtest.h>

namespace {

void expectBox(const qzBoundingBox& box, int x, int y, int width, int height) {
    EXPECT_EQ(box.x, x);
    EXPECT_EQ(box.y, y);
    EXPECT_EQ(box.width, width);
    EXPECT_EQ(box.height, height);
}

TEST(qzBoundingBox, IntersectionIsTheSharedAreaInEitherOrder) {
    const qzBoundingBox a(0, 0, 10, 10);
    const qzBoundingBox b(4, 6, 20, 2);
    expectBox(a.intersect(b), 4, 6, 6, 2);
    expectBox(b.intersect(a), 4, 6, 6, 2);
    expectBox(a.intersect(a), 0, 0, 10, 10);
}

TEST(qzBoundingBox, TouchingEdgesDoNotOverlap) {
    const qzBoundingBox a(0, 0, 10, 10);
    expectBox(a.intersect(qzBoundingBox(10, 2, 5, 5)), 0, 2, 0, 5);
    expectBox(a.intersect(qzBoundingBox(2, 10, 5, 5)), 2, 0, 5, 0);
    expectBox(a.intersect(qzBoundingBox(-5, -5, 5, 5)), 0, 0, 0, 0);
    expectBox(a.intersect(qzBoundingBox(9, 9, 5, 5)), 9, 9, 1, 1);
}

TEST(qzBoundingBox, BoundIgnoresEmptyExtentsAxisByAxis) {
    const qzBoundingBox a(1, 2, 10, 0);
    const qzBoundingBox b(5, 7, 20, 3);
    expectBox(a.bound(b), 1, 7, 24, 3);
    expectBox(b.bound(a), 1, 7, 24, 3);
    // Where both are empty the argument's stand.
    expectBox(qzBoundingBox(1, 2, 0, 0).bound(qzBoundingBox(3, 4, 0, 0)), 3, 4, 0, 0);
}

TEST(qzBoundingBox, BoundNarrowsFarEdgeToSixteenBits) {
    expectBox(qzBoundingBox(0, 0, 32767, 1).bound(qzBoundingBox(0, 0, 1, 1)), 0, 0, 32767, 1);
    // 32768 is -32768 in 16 bits, so the other box's edge, 1, is farther.
    expectBox(qzBoundingBox(0, 0, 32768, 1).bound(qzBoundingBox(0, 0, 1, 1)), 0, 0, 1, 1);
    expectBox(qzBoundingBox(70000, 0, 1, 1).bound(qzBoundingBox(70000, 0, 2, 1)), 70000, 0,
              4466 - 70000, 1);
}

} // namespace
