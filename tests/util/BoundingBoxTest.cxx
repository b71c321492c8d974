#include "util/BoundingBox.h"

#include <gtest/gtest.h>

namespace {

using Box = qzBoundingBox;

void expectBox(const Box& box, int x, int y, int width, int height) {
    EXPECT_TRUE(box.x == x && box.y == y && box.width == width && box.height == height)
        << box.x << ' ' << box.y << ' ' << box.width << ' ' << box.height;
}

TEST(qzBoundingBox, BoxesThatTouchDoNotOverlap) {
    const Box a(0, 0, 10, 10);
    expectBox(a.intersect(Box(4, 6, 20, 2)), 4, 6, 6, 2);
    expectBox(Box(4, 6, 20, 2).intersect(a), 4, 6, 6, 2);
    expectBox(a.intersect(Box(10, 9, 5, 5)), 0, 9, 0, 1);
    expectBox(a.intersect(Box(2, -5, 5, 5)), 2, 0, 5, 0);
}

TEST(qzBoundingBox, BoundNarrowsFarEdgeToSixteenBits) {
    expectBox(Box(1, 2, 10, 0).bound(Box(5, 7, 20, 3)), 1, 7, 24, 3); // empty on one axis
    expectBox(Box(5, 7, 20, 3).bound(Box(1, 2, 10, 0)), 1, 7, 24, 3);
    expectBox(Box(1, 2, 0, 0).bound(Box(3, 4, 0, 0)), 3, 4, 0, 0); // the argument's stand
    expectBox(Box(0, 0, 32767, 1).bound(Box(0, 0, 1, 1)), 0, 0, 32767, 1);
    expectBox(Box(0, 0, 32768, 1).bound(Box(0, 0, 1, 1)), 0, 0, 1, 1); // -32768 in 16 bits
    expectBox(Box(70000, 0, 1, 1).bound(Box(70000, 0, 2, 1)), 70000, 0, 4466 - 70000, 1);
}

} // namespace
