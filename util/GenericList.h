// GenericList: a doubly linked list of untyped item pointers, addressed by index.
//
// A cached position makes walking the list by index cheap. Reading moves the
// cache, so even findItem() on a const list changes the object.
//
// Ownership: the list owns its nodes, never the items.
// Trusted: a node passed to remove() belongs to this list.
// Errors: an index out of range writes "List bounds violation in
// ../GenericList.cxx aborting ..." to standard error and aborts; any remove()
// on an empty list does so with "List underflow in ../GenericList.cxx aborting
// ...".
// Cost: append(), prepend() and remove(GenericNode*) are constant. Access by
// index walks from the nearest of head, tail and cached node, one link per call
// for neighbouring indexes. remove(void*) searches from the head.
#ifndef QZ_UTIL_GENERICLIST_H
#define QZ_UTIL_GENERICLIST_H

#include "util/Export.h"

// One place in a GenericList. Construction links the node in between its
// neighbours (null for none), destruction joins them again.
class QZ_EXPORT GenericNode {
  public:
    GenericNode(GenericNode* prev, GenericNode* next, void* item);
    GenericNode(const GenericNode&) = delete;
    GenericNode& operator=(const GenericNode&) = delete;
    ~GenericNode();

    // Public for reading; change them only through the list's operations.
    GenericNode* prev;
    GenericNode* next;
    void* item;
};

class QZ_EXPORT GenericList {
  public:
    GenericList() = default;
    // A list of the same item pointers in nodes of its own.
    GenericList(const GenericList& other);
    GenericList& operator=(const GenericList& other);
    ~GenericList();

    void append(void* item);
    void prepend(void* item);
    // The new item gets this index, from 0 (prepends) to count (appends).
    void insertAt(long index, void* item);

    void* findItem(long index) const { return findNode(index)->item; }
    void* findItem(int index) const { return findNode(index)->item; }
    GenericNode* findNode(long index) const;

    // Each returns the item that was removed and puts the cache back to the
    // head. The overload is chosen by the static type: a literal 0 is
    // ambiguous (write 0L), and a GenericNode* always means the node.
    void* remove(GenericNode* node);
    // The first node from the head that holds exactly this pointer; null when
    // no node does.
    void* remove(void* item);
    void* remove(long index);
    void clear();

    // Public for reading; change them only through the operations.
    long count = 0;
    mutable long cacheIndex = 0; // index of cacheNode
    GenericNode* head = nullptr;
    GenericNode* tail = nullptr;
    mutable GenericNode* cacheNode = nullptr; // null only in an empty list

  private:
    void appendAll(const GenericList& other);
    void checkNotEmpty() const;
    void setCache(long index, GenericNode* node);
};

#endif
