#include "util/IndexableList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

using Model = std::vector<qzLinkItem*>;

void expectSame(const qzIndexableList& list, const Model& model) {
    ASSERT_EQ(list.count, static_cast<long>(model.size()));
    const qzLinkItem *previous = nullptr, *item = list.head;
    for (qzLinkItem* expected : model) {
        ASSERT_EQ(item, expected);
        ASSERT_EQ(item->prev, previous);
        previous = item;
        item = item->next;
    }
    ASSERT_EQ(item, nullptr);
    ASSERT_EQ(list.tail, previous);
    ASSERT_TRUE(!list.cacheLink || list.cacheLink == model.at(list.cacheIndex));
}

TEST(qzIndexableList, AgreesWithAVectorThroughRandomOperations) {
    std::mt19937 random(2602);
    std::vector<qzLinkItem> items(60);
    Model unused, model;
    for (qzLinkItem& item : items)
        unused.push_back(&item);
    qzIndexableList list;
    for (int step = 0; step < 40000; ++step) {
        const long size = list.count, at = size ? random() % size : 0;
        const unsigned choice = random() % 10;
        if (choice < 2 && !unused.empty()) {
            qzLinkItem* item = unused.back();
            unused.pop_back();
            item->next = item->prev = item; // stale links do not matter
            const long position = random() % (size + 1);
            if (choice == 0 || position == 0)
                list.insertAt(position, item);
            else
                list.appendAt(position - 1, item);
            model.insert(model.begin() + position, item);
        } else if (choice < 4 && size > 20) {
            qzLinkItem* item = choice == 2 ? list.unlinkAt(at) : list.unlink(model[at]);
            ASSERT_EQ(item, model[at]);
            ASSERT_TRUE(!item->next && !item->prev);
            model.erase(model.begin() + at);
            unused.push_back(item);
        } else if (choice < 8 && size) { // cut in two and put together elsewhere
            qzIndexableList rest(choice == 5 ? list.splitAt(at) : list.split(model[at]));
            const Model cut(model.begin() + at, model.end());
            model.resize(at);
            ASSERT_NO_FATAL_FAILURE(expectSame(list, model)) << "step " << step;
            ASSERT_NO_FATAL_FAILURE(expectSame(rest, cut)) << "step " << step;
            const long behind = at ? random() % at : 0;
            const long position = choice == 5 || at == 0 ? behind : choice == 6 ? at : behind + 1;
            if (choice == 5) list.insertListAt(behind, &rest);
            if (choice == 6 || position == at) list.appendList(&rest);
            if (rest.head) list.appendListAt(behind, &rest);
            model.insert(model.begin() + position, cut.begin(), cut.end());
            ASSERT_EQ(list.cacheLink, nullptr);
            list.appendListAt(at, &rest); // it is empty now
        } else if (size) {
            ASSERT_EQ(list.findLink(at), model[at]);
        }
        ASSERT_NO_FATAL_FAILURE(expectSame(list, model)) << "step " << step;
    }
}

// Five items, the one at `cached` in the cache.
struct Filled : qzIndexableList {
    std::vector<qzLinkItem> items{5};
    explicit Filled(int cached) {
        for (qzLinkItem& item : items)
            append(&item);
        cacheIndex = cached;
        cacheLink = &items[cached];
    }
};

TEST(qzIndexableList, UnlinkAtKeepsTheCacheOnAnItemThatStays) {
    const struct {
        int cached, unlinked, index, item;
    } rows[] = {{3, 0, 2, 3}, {2, 4, 2, 2}, {2, 2, 2, 3}, {4, 4, 3, 3}};
    for (const auto& row : rows) {
        Filled list(row.cached), halved(row.cached);
        list.findLink(0); // the ends are had without the cache
        list.unlinkAt(row.unlinked);
        EXPECT_EQ(list.cacheIndex, row.index) << row.cached;
        EXPECT_EQ(list.cacheLink, &list.items[row.item]) << row.cached;
        halved.splitAt(4);
        EXPECT_EQ(halved.cacheIndex, row.cached % 4);
    }
}

TEST(qzIndexableList, SplicingBehindTheLastIndexKeepsTail) {
    Filled first(0), second(0);
    first.appendListAt(4, &second);
    EXPECT_EQ(first.tail, &first.items[4]);
    EXPECT_EQ(first.tail->next, &second.items[0]);
    EXPECT_EQ(first.count, 10);
}

} // namespace
