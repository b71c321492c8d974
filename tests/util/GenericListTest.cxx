#include "util/GenericList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <random>
#include <vector>

namespace {

using Model = std::vector<void*>;

int items[60];

void expectSame(const GenericList& list, const Model& model) {
    ASSERT_EQ(list.count, static_cast<long>(model.size()));
    const GenericNode* previous = nullptr;
    const GenericNode* cached = nullptr;
    const GenericNode* node = list.head;
    for (long i = 0; i < list.count; ++i, node = node->next) {
        ASSERT_EQ(node->item, model[i]);
        ASSERT_EQ(node->prev, previous);
        if (i == list.cacheIndex) cached = node;
        previous = node;
    }
    ASSERT_EQ(node, nullptr);
    ASSERT_EQ(list.tail, previous);
    ASSERT_EQ(list.cacheNode, cached);
}

TEST(GenericList, AgreesWithAVectorThroughRandomOperations) {
    std::mt19937 random(2601);
    GenericList list;
    Model model;
    for (int step = 0; step < 20000; ++step) {
        const long at = random() % (model.size() + 1);
        void* item = &items[random() % 60];
        const unsigned choice = random() % 6;
        if (choice < 2) {
            list.insertAt(at, item);
            model.insert(model.begin() + at, item);
        } else if (at < list.count && choice < 4) {
            ASSERT_EQ(list.findItem(at), model[at]);
        } else if (at < list.count && choice == 4) {
            ASSERT_EQ(list.remove(at), model[at]);
            model.erase(model.begin() + at);
        } else if (!model.empty()) {
            const auto found = std::find(model.begin(), model.end(), item);
            ASSERT_EQ(list.remove(item), found == model.end() ? nullptr : item);
            if (found != model.end()) model.erase(found);
        }
        ASSERT_NO_FATAL_FAILURE(expectSame(list, model)) << "step " << step;
    }
    ASSERT_GT(list.count, 20);

    GenericList copy(list), assigned(copy);
    assigned.append(items);
    assigned = list;
    const GenericList& self = assigned;
    assigned = self;
    list.clear();
    expectSame(list, {});
    expectSame(copy, model);
    expectSame(assigned, model);
}

TEST(GenericList, EveryOperationLeavesTheCacheWhereDocumented) {
    GenericList list;
    for (int& item : items)
        list.append(&item);
    EXPECT_EQ(list.cacheIndex, 59);
    list.findItem(4);
    list.findItem(0); // the ends are had without the cache
    list.findItem(59);
    EXPECT_EQ(list.cacheIndex, 4);
    list.insertAt(6, items);
    EXPECT_EQ(list.cacheIndex, 6);
    list.remove(7L);
    EXPECT_EQ(list.cacheIndex, 0);
    list.findItem(5);
    list.prepend(items);
    EXPECT_EQ(list.cacheIndex, 0);
}

const auto aborted = testing::KilledBySignal(SIGABRT);

TEST(GenericListDeathTest, IndexesOutOfRangeAreReported) {
    const char* message =
        "^List bounds violation in \\.\\./GenericList\\.cxx aborting \\.\\.\\.\n$";
    GenericList list;
    EXPECT_EXIT(list.findItem(0), aborted, message);
    list.append(items);
    EXPECT_EXIT(list.findItem(1), aborted, message);
    EXPECT_EXIT(list.findItem(-1L), aborted, message);
    EXPECT_EXIT(list.insertAt(2, items), aborted, message);
}

TEST(GenericListDeathTest, RemovingFromAnEmptyListIsAnUnderflow) {
    const char* message = "^List underflow in \\.\\./GenericList\\.cxx aborting \\.\\.\\.\n$";
    GenericList list;
    EXPECT_EXIT(list.remove(0L), aborted, message);
    EXPECT_EXIT(list.remove(list.head), aborted, message);
    EXPECT_EXIT(list.remove(static_cast<void*>(items)), aborted, message);
}

} // namespace
