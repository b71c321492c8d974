#include "util/IndexableList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

using Model = std::vector<qzLinkItem*>;

void expectSame(const qzIndexableList& list, const Model& model) {
    ASSERT_EQ(list.count, static_cast<long>(model.size()));
    const qzLinkItem* previous = nullptr;
    const qzLinkItem* item = list.head;
    for (qzLinkItem* expected : model) {
        ASSERT_EQ(item, expected);
        ASSERT_EQ(item->prev, previous);
        previous = item;
        item = item->next;
    }
    ASSERT_EQ(item, nullptr);
    ASSERT_EQ(list.tail, previous);
    if (list.cacheLink) {
        ASSERT_EQ(list.cacheLink, model.at(list.cacheIndex));
    }
}

TEST(qzIndexableList, AgreesWithAVectorThroughRandomOperations) {
    std::mt19937 random(2602);
    std::vector<qzLinkItem> items(60);
    Model unused, model;
    for (qzLinkItem& item : items) {
        item.next = item.prev = &item; // stale links do not matter
        unused.push_back(&item);
    }
    qzIndexableList list;
    for (int step = 0; step < 40000; ++step) {
        const long size = list.count;
        const long at = size ? static_cast<long>(random() % size) : 0;
        const unsigned choice = random() % 12;
        if (choice < 4 && !unused.empty()) {
            qzLinkItem* item = unused.back();
            unused.pop_back();
            if (choice < 2) list.insertAt(at, item);
            if (choice == 2) list.appendAt(at, item);
            if (choice == 3) list.append(item);
            const long position = choice < 2 ? at : choice == 2 ? at + 1 : size;
            model.insert(model.begin() + std::min(position, size), item);
        } else if (choice < 6 && size > 20) {
            qzLinkItem* item = choice == 4 ? list.unlinkAt(at) : list.unlink(model[at]);
            ASSERT_EQ(item, model[at]);
            ASSERT_TRUE(!item->next && !item->prev);
            item->next = item->prev = item;
            model.erase(model.begin() + at);
            unused.push_back(item);
        } else if (choice < 8 && size) { // cut in two and put together elsewhere
            qzLinkItem* cut = choice == 6 ? list.splitAt(at) : list.split(model[at]);
            const Model cutModel(model.begin() + at, model.end());
            model.resize(at);
            ASSERT_NO_FATAL_FAILURE(expectSame(list, model)) << "step " << step;
            qzIndexableList rest(cut);
            ASSERT_NO_FATAL_FAILURE(expectSame(rest, cutModel)) << "step " << step;
            ASSERT_EQ(rest.cacheLink, cut);

            const long behind = at ? static_cast<long>(random() % at) + 1 : 0;
            if (choice == 6)
                list.insertListAt(std::max(behind - 1, 0L), &rest);
            else if (behind < at)
                list.appendListAt(behind - 1, &rest);
            else
                list.appendList(&rest);
            model.insert(model.begin() + (choice == 6 ? std::max(behind - 1, 0L) : behind),
                         cutModel.begin(), cutModel.end());
            ASSERT_EQ(list.cacheLink, nullptr);
            ASSERT_NO_FATAL_FAILURE(expectSame(rest, {}));
            list.insertListAt(0, &rest); // nothing: changes nothing
            list.appendListAt(at, &rest);
        } else if (size) {
            ASSERT_EQ(list.findLink(at), model[at]);
        }
        ASSERT_NO_FATAL_FAILURE(expectSame(list, model)) << "step " << step;
    }
}

// n items, the one at `cached` in the cache, or none for -1.
struct Filled : qzIndexableList {
    std::vector<qzLinkItem> items;
    explicit Filled(int n, long cached = -1) : items(n) {
        for (qzLinkItem& item : items)
            append(&item);
        cacheIndex = std::max(cached, 0L);
        cacheLink = cached < 0 ? nullptr : &items[cached];
    }
};

TEST(qzIndexableList, FirstWalkBeginsTheCacheAndTheEndsDoNot) {
    Filled list(5);
    list.findLink(0);
    list.findLink(4);
    EXPECT_EQ(list.cacheLink, nullptr);
    list.findLink(2);
    list.findLink(4);
    EXPECT_EQ(list.cacheLink, &list.items[2]);
}

TEST(qzIndexableList, UnlinkAtAndSplitAtKeepTheCacheOnAnItemThatStays) {
    const struct {
        int size;
        long cached, unlinked, index;
        int item; // -1: none
    } rows[] = {
        {5, 3, 0, 2, 3}, {5, 2, 4, 2, 2}, {5, 2, 2, 2, 3}, {5, 4, 4, 3, 3}, {1, 0, 0, 0, -1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.size << ' ' << row.cached << ' ' << row.unlinked);
        Filled list(row.size, row.cached);
        list.unlinkAt(row.unlinked);
        EXPECT_EQ(list.cacheIndex, row.index);
        EXPECT_EQ(list.cacheLink, row.item < 0 ? nullptr : &list.items[row.item]);
    }
    Filled before(5, 1), behind(5, 3), none(1);
    before.splitAt(4);
    EXPECT_EQ(before.cacheIndex, 1);
    behind.splitAt(3);
    EXPECT_EQ(behind.cacheIndex, 0);
    qzLinkItem first;
    none.insert(&first);
    none.splitAt(1);
    EXPECT_EQ(none.cacheLink, nullptr);
}

TEST(qzIndexableList, SplicingBehindTheLastIndexKeepsTail) {
    Filled first(2), second(2);
    first.appendListAt(1, &second);
    EXPECT_EQ(first.tail, &first.items[1]);
    EXPECT_EQ(first.tail->next, &second.items[0]);
    EXPECT_EQ(first.count, 4);
}

} // namespace
