#include "util/Counted.h"

#include <gtest/gtest.h>

#include "util/RCObj.h"
#include "util/RPtr_base.h"

namespace {

int destroyed = 0;

template <class Base> struct Tracked : Base {
    ~Tracked() override { ++destroyed; }
    using Base::refCount;
    RPtr_base next;
};

template <class Base> void expectLastReleaseDestroys() {
    auto* object = new Tracked<Base>;
    object->addRef();
    object->addRef();
    EXPECT_EQ(Tracked<Base>(*object).refCount, 0); // nobody holds a copy
    *object = Tracked<Base>();
    destroyed = 0;
    object->delRef();
    EXPECT_EQ(destroyed, 0);
    static_cast<Base*>(object)->delRef();
    (new Tracked<Base>)->delRef(); // nobody held it: -1 is below 1, too
    EXPECT_EQ(destroyed, 2);
}

TEST(Counted, LastReleaseDestroys) {
    expectLastReleaseDestroys<Counted>();
    expectLastReleaseDestroys<qzRCObj>();
}

// Stepping along a list releases the node that holds the pointer assigned from.
TEST(RPtr_base, AssignmentSurvivesTheDeathOfItsSource) {
    auto *second = new Tracked<Counted>, *first = new Tracked<Counted>;
    first->next = RPtr_base(second);
    RPtr_base position(first);
    position = first->next;
    EXPECT_EQ(second->refCount, 1);
}

} // namespace
