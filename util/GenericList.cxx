#include "util/GenericList.h"

#include "util/Fatal.h"
#include "util/detail/IndexedWalk.h"

namespace {

[[noreturn]] void boundsViolation() {
    qzFatal("List bounds violation in ../GenericList.cxx aborting ...");
}

} // namespace

GenericNode::GenericNode(GenericNode* prevNode, GenericNode* nextNode, void* nodeItem)
    : prev(prevNode), next(nextNode), item(nodeItem) {
    if (prev) prev->next = this;
    if (next) next->prev = this;
}

GenericNode::~GenericNode() {
    if (prev) prev->next = next;
    if (next) next->prev = prev;
}

GenericList::GenericList(const GenericList& other) { appendAll(other); }

GenericList& GenericList::operator=(const GenericList& other) {
    if (this == &other) return *this;
    clear();
    appendAll(other);
    return *this;
}

GenericList::~GenericList() { clear(); }

void GenericList::append(void* item) {
    tail = new GenericNode(tail, nullptr, item);
    if (!head) head = tail;
    setCache(count, tail);
    ++count;
}

void GenericList::prepend(void* item) {
    head = new GenericNode(nullptr, head, item);
    if (!tail) tail = head;
    setCache(0, head);
    ++count;
}

void GenericList::insertAt(long index, void* item) {
    if (index == 0) return prepend(item);
    if (index == count) return append(item);
    GenericNode* following = findNode(index);
    setCache(index, new GenericNode(following->prev, following, item));
    ++count;
}

GenericNode* GenericList::findNode(long index) const {
    if (index < 0 || index >= count) boundsViolation();
    return qzIndexedNode(index, count, head, tail, cacheIndex, cacheNode);
}

void* GenericList::remove(GenericNode* node) {
    checkNotEmpty();
    void* item = node->item;
    if (node == head) head = node->next;
    if (node == tail) tail = node->prev;
    delete node;
    --count;
    setCache(0, head);
    return item;
}

void* GenericList::remove(void* item) {
    checkNotEmpty();
    GenericNode* node = head;
    while (node && node->item != item)
        node = node->next;
    return node ? remove(node) : nullptr;
}

void* GenericList::remove(long index) {
    checkNotEmpty();
    return remove(findNode(index));
}

void GenericList::clear() {
    while (head)
        remove(head);
}

void GenericList::appendAll(const GenericList& other) {
    for (const GenericNode* node = other.head; node; node = node->next)
        append(node->item);
}

// Deliberate: an empty list is an error even where an absent item is not; a
// caller that takes items out of a list it has emptied learns of it at once.
// Pinned by GenericListDeathTest.RemovingFromAnEmptyListIsAnUnderflow.
void GenericList::checkNotEmpty() const {
    if (count == 0) qzFatal("List underflow in ../GenericList.cxx aborting ...");
}

void GenericList::setCache(long index, GenericNode* node) {
    cacheIndex = index;
    cacheNode = node;
}
