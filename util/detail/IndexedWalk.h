// Indexed access to a doubly linked list with a cached position, shared by
// GenericList and qzIndexableList.
//
// Trusted: the index lies in the list, and tail is the node at count - 1.
// Cost: the number of links from the nearest of head, tail and cache; one link
// per call when the indexes follow each other.
#ifndef QZ_UTIL_DETAIL_INDEXEDWALK_H
#define QZ_UTIL_DETAIL_INDEXEDWALK_H

// The node `links` steps away. Four at a time: the loop's own work would
// otherwise be half of the walk.
template <auto Link, typename Node> Node* qzFollow(Node* node, long links) {
    for (; links > 3; links -= 4)
        node = (((node->*Link)->*Link)->*Link)->*Link;
    for (; links > 0; --links)
        node = node->*Link;
    return node;
}

// The node at the index. The two ends are had without the cache, which stays as
// it is; any other node becomes the cached one. A list without a cached node
// (null) is given one first: its head.
template <typename Node>
Node* qzIndexedNode(long index, long count, Node* head, Node* tail, long& cacheIndex,
                    Node*& cached) {
    if (index == 0) return head;
    if (index == count - 1) return tail;
    if (!cached) {
        cached = head;
        cacheIndex = 0;
    }

    if (index > cacheIndex) {
        const long fromCache = index - cacheIndex;
        const long fromTail = count - 1 - index;
        cached = fromCache < fromTail ? qzFollow<&Node::next>(cached, fromCache)
                                      : qzFollow<&Node::prev>(tail, fromTail);
    } else {
        const long fromCache = cacheIndex - index;
        cached = fromCache <= index ? qzFollow<&Node::prev>(cached, fromCache)
                                    : qzFollow<&Node::next>(head, index);
    }
    cacheIndex = index;
    return cached;
}

#endif
