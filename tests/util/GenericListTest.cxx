#include "util/GenericList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <random>
#include <vector>

namespace {

int items[60];

void expectSame(const GenericList& list, const std::vector<void*>& model) {
    const GenericNode *previous = nullptr, *node = list.head;
    for (long i = 0; i < list.count; ++i, previous = node, node = node->next) {
        ASSERT_EQ(node->item, model.at(i));
        ASSERT_EQ(node->prev, previous);
        ASSERT_EQ(node == list.cacheNode, i == list.cacheIndex);
    }
    ASSERT_EQ(node, nullptr);
    ASSERT_EQ(list.tail, previous);
    ASSERT_EQ(list.count, static_cast<long>(model.size()));
}

TEST(GenericList, AgreesWithAVectorAndCachesWhatItTouched) {
    std::mt19937 random(2601);
    GenericList list;
    std::vector<void*> model;
    for (int step = 0; step < 20000; ++step) {
        const long at = random() % (model.size() + 1);
        void* item = &items[random() % 60];
        const unsigned choice = random() % 6;
        if (choice < 2) {
            list.insertAt(at, item);
            model.insert(model.begin() + at, item);
            ASSERT_EQ(list.cacheIndex, at);
        } else if (at == list.count) { // there is no item
        } else if (choice < 4) {
            const long cached = list.cacheIndex;
            ASSERT_EQ(list.findItem(at), model[at]);
            ASSERT_EQ(list.cacheIndex, at == 0 || at == list.count - 1 ? cached : at);
        } else {
            const auto found = std::find(model.begin(), model.end(), item);
            const auto removed = choice == 4 ? model.begin() + at : found;
            void* const expected = removed == model.end() ? nullptr : *removed;
            ASSERT_EQ(choice == 4 ? list.remove(at) : list.remove(item), expected);
            if (expected) model.erase(removed);
        }
        ASSERT_NO_FATAL_FAILURE(expectSame(list, model)) << "step " << step;
    }
    GenericList copy(list), assigned;
    assigned.append(items);
    assigned = list;
    assigned = static_cast<GenericList&>(assigned);
    list.clear();
    expectSame(copy, model);
    expectSame(assigned, model);
}

const auto aborted = testing::KilledBySignal(SIGABRT);

TEST(GenericListDeathTest, IndexesOutOfRangeAreReported) {
    const char* message =
        "^List bounds violation in \\.\\./GenericList\\.cxx aborting \\.\\.\\.\n$";
    GenericList list;
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
