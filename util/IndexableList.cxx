#include "util/IndexableList.h"

#include "util/detail/IndexedWalk.h"

#include <cassert>

namespace {

// Makes two items neighbours; null stands for the end of the list.
void join(qzLinkItem* before, qzLinkItem* after) {
    if (before) before->next = after;
    if (after) after->prev = before;
}

} // namespace

qzIndexableList::qzIndexableList(qzLinkItem* first) : head(first), cacheLink(first) {
    for (qzLinkItem* item = first; item; item = item->next) {
        tail = item;
        ++count;
    }
}

qzLinkItem* qzIndexableList::findLink(long index) {
    assert(index == 0 || (index > 0 && index < count));
    return qzIndexedNode(index, count, head, tail, cacheIndex, cacheLink);
}

void qzIndexableList::insertAt(long index, qzLinkItem* item) {
    if (!head) {
        item->next = item->prev = nullptr;
        head = tail = item;
        setCache(0, item);
    } else if (index >= count) {
        join(tail, item);
        item->next = nullptr;
        tail = item;
    } else {
        qzLinkItem* following = findLink(index);
        join(following->prev, item);
        join(item, following);
        if (following == head) head = item;
        if (index <= cacheIndex) ++cacheIndex;
    }
    ++count;
}

qzLinkItem* qzIndexableList::unlink(qzLinkItem* item) {
    takeOut(item);
    setCache(0, head);
    return item;
}

qzLinkItem* qzIndexableList::unlinkAt(long index) {
    qzLinkItem* item = findLink(index);
    if (index < cacheIndex)
        --cacheIndex;
    else if (index == cacheIndex) {
        if (item->next)
            cacheLink = item->next;
        else if (item->prev)
            setCache(index - 1, item->prev);
        else
            setCache(0, nullptr);
    }
    takeOut(item);
    return item;
}

qzLinkItem* qzIndexableList::split(qzLinkItem* at) {
    cutBefore(at);
    setCache(0, head);
    return at;
}

qzLinkItem* qzIndexableList::splitAt(long index) {
    qzLinkItem* at = findLink(index);
    cutBefore(at);
    if (cacheLink && index <= cacheIndex) setCache(0, head);
    return at;
}

void qzIndexableList::insertListAt(long index, qzIndexableList* other) {
    assert(other != this);
    if (!head) {
        head = other->head;
        tail = other->tail;
    } else if (other->head) {
        qzLinkItem* following = findLink(index);
        join(following->prev, other->head);
        join(other->tail, following);
        if (following == head) head = other->head;
    }
    absorb(other);
}

void qzIndexableList::appendListAt(long index, qzIndexableList* other) {
    assert(other != this);
    if (other->head && index < count) {
        qzLinkItem* preceding = findLink(index);
        qzLinkItem* following = preceding->next;
        join(preceding, other->head);
        join(other->tail, following);
    } else if (other->head) {
        join(tail, other->head);
        if (!head) head = other->head;
        tail = other->tail;
    }
    absorb(other);
}

void qzIndexableList::takeOut(qzLinkItem* item) {
    join(item->prev, item->next);
    if (item == head) head = item->next;
    if (item == tail) tail = item->prev;
    item->next = item->prev = nullptr;
    --count;
}

void qzIndexableList::cutBefore(qzLinkItem* at) {
    if (at == head) {
        head = tail = nullptr;
    } else {
        tail = at->prev;
        tail->next = nullptr;
        at->prev = nullptr;
    }
    count = 0;
    for (const qzLinkItem* item = head; item; item = item->next)
        ++count;
}

// What splicing leaves to do once the items of other are linked in.
void qzIndexableList::absorb(qzIndexableList* other) {
    count += other->count;
    setCache(0, nullptr);
    other->head = other->tail = nullptr;
    other->setCache(0, nullptr);
    other->count = 0;
}

void qzIndexableList::setCache(long index, qzLinkItem* item) {
    cacheIndex = index;
    cacheLink = item;
}
