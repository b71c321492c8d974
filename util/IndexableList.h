// qzIndexableList: a list of objects that carry their own links, addressed by
// index, with splicing and splitting.
//
// A cached position makes walking the list by index cheap, as in GenericList.
//
// Ownership: none. The list only relinks items: it neither allocates nor frees,
// and its destruction leaves the items linked to each other.
// Trusted: everything. Indexes are in range, an item passed in is in no list,
// one to take out is in this one, and a list to splice in is another one.
// Cost: access by index walks from the nearest of head, tail and cached item.
// Splicing is that access alone; splitting counts the items that remain.
#ifndef QZ_UTIL_INDEXABLELIST_H
#define QZ_UTIL_INDEXABLELIST_H

#include "util/Export.h"
#include "util/LinkItem.h"

class QZ_EXPORT qzIndexableList {
  public:
    qzIndexableList() = default;
    // Adopts a chain that is linked already, from its first item (null: none).
    explicit qzIndexableList(qzLinkItem* first);
    qzIndexableList(const qzIndexableList&) = delete;
    qzIndexableList& operator=(const qzIndexableList&) = delete;

    // The item at the index; index 0 of an empty list is null.
    qzLinkItem* findLink(long index);

    // The item gets this index; an index of count or more appends.
    void insertAt(long index, qzLinkItem* item);
    void insert(qzLinkItem* item) { insertAt(0, item); }
    void append(qzLinkItem* item) { insertAt(count, item); }
    // The item follows the one at the index.
    void appendAt(long index, qzLinkItem* item) { insertAt(index + 1, item); }

    // Takes one item out, its links cleared, and returns it. unlink() puts the
    // cache back to the head, unlinkAt() keeps it in place.
    qzLinkItem* unlink(qzLinkItem* item);
    qzLinkItem* unlinkAt(long index);

    // Cuts the list in front of the item and returns the item, which leads the
    // part cut off: a bare chain from there on.
    qzLinkItem* split(qzLinkItem* at);
    qzLinkItem* splitAt(long index);

    // Moves all of other in front of the item at the index, or into this list
    // when it is empty. Leaves other empty and this list without a cache.
    void insertListAt(long index, qzIndexableList* other);
    void insertList(qzIndexableList* other) { insertListAt(0, other); }

    // Moves all of other behind the item at the index; an index of count or
    // more attaches it at the end. Leaves other empty and this list without a
    // cache.
    //
    // Deliberate: behind the last item by its own index, count - 1, is a splice
    // like any other and leaves tail at the item it named, so that a caller who
    // holds on to tail keeps its place. The list no longer ends at tail then:
    // appendList() is the way to attach at the end.
    // Pinned by qzIndexableList.SplicingBehindTheLastIndexKeepsTail.
    void appendListAt(long index, qzIndexableList* other);
    void appendList(qzIndexableList* other) { appendListAt(count, other); }

    // Public for reading; change them only through the operations.
    qzLinkItem* head = nullptr;
    qzLinkItem* tail = nullptr;
    long cacheIndex = 0;             // means nothing while cacheLink is null
    qzLinkItem* cacheLink = nullptr; // the item at cacheIndex; null: none cached
    long count = 0;

  private:
    void takeOut(qzLinkItem* item);
    void cutBefore(qzLinkItem* at);
    void absorb(qzIndexableList* other);
    void setCache(long index, qzLinkItem* item);
};

#endif
