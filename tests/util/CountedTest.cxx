#include "util/Counted.h"

#include <gtest/gtest.h>

#include "util/RCObj.h"
#include "util/RPtr_base.h"

namespace {

// Both bases follow one rule: the release that takes the count below 1 destroys.
template <class Base> struct Tracked : Base {
    explicit Tracked(int& destroyed) : destroyed(destroyed) {}
    ~Tracked() override { ++destroyed; }
    using Base::refCount;
    int& destroyed;
};

template <class Base> void expectLastReleaseDestroys() {
    int destroyed = 0;
    auto* object = new Tracked<Base>(destroyed);
    EXPECT_EQ(object->refCount, 0);
    object->addRef();
    object->addRef();
    object->delRef();
    EXPECT_EQ(destroyed, 0);
    // Through the base: the destructor is virtual.
    static_cast<Base*>(object)->delRef();
    EXPECT_EQ(destroyed, 1);
    (new Tracked<Base>(destroyed))->delRef(); // nobody held it: -1 is below 1, too
    EXPECT_EQ(destroyed, 2);
}

template <class Base> void expectCopiesHaveNoHolders() {
    int destroyed = 0;
    Tracked<Base> original(destroyed);
    original.addRef();
    original.addRef();
    Tracked<Base> copy(original);
    EXPECT_EQ(copy.refCount, 0);
    copy.addRef();
    static_cast<Base&>(copy) = original;
    EXPECT_EQ(copy.refCount, 1);
    EXPECT_EQ(original.refCount, 2);
}

TEST(Counted, LastReleaseDestroys) { expectLastReleaseDestroys<Counted>(); }
TEST(Counted, CopiesHaveNoHolders) { expectCopiesHaveNoHolders<Counted>(); }
TEST(qzRCObj, LastReleaseDestroys) { expectLastReleaseDestroys<qzRCObj>(); }
TEST(qzRCObj, CopiesHaveNoHolders) { expectCopiesHaveNoHolders<qzRCObj>(); }

struct Pointer : RPtr_base {
    using RPtr_base::RPtr_base;
    Counted* get() const { return object; }
};

struct Node : Tracked<Counted> {
    using Tracked::Tracked;
    Pointer next;
};

TEST(RPtr_base, HoldsOneReferencePerPointer) {
    int destroyed = 0;
    auto* node = new Node(destroyed);
    {
        Pointer first(node), second(first), other(new Node(destroyed));
        EXPECT_EQ(node->refCount, 2);
        first = static_cast<Pointer&>(first);
        first = second;
        EXPECT_EQ(node->refCount, 2);
        first = Pointer();
        EXPECT_EQ(first.get(), nullptr);
        EXPECT_EQ(node->refCount, 1);
        other = second;
        EXPECT_EQ(destroyed, 1);
        EXPECT_EQ(node->refCount, 2);
    }
    EXPECT_EQ(destroyed, 2);
}

// Stepping along a list releases the node that holds the pointer assigned from.
TEST(RPtr_base, AssignmentSurvivesTheDeathOfItsSource) {
    int destroyed = 0;
    auto* second = new Node(destroyed);
    auto* first = new Node(destroyed);
    first->next = Pointer(second);
    Pointer position(first);
    position = first->next;
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(position.get(), second);
    EXPECT_EQ(second->refCount, 1);
}

} // namespace
