// The block of an entry of a dictionary or set: key and value, and behind them
// the node, with the predecessor's address in front of it:
//
//     key | value | padding | previous | node: kvmem | node: next
//
// One block costs less than two, and a search that has come to the key has the
// node at hand. `previous` means something only while the container has an index.
#ifndef QZ_UTIL_DETAIL_ENTRYBLOCK_H
#define QZ_UTIL_DETAIL_ENTRYBLOCK_H

#include "util/detail/RawMemory.h"

// From the start of the block; entryBytes is the size of key and value.
inline std::size_t qzNodeOffset(std::size_t entryBytes) {
    const std::size_t word = sizeof(void*);
    return (entryBytes + word - 1) / word * word + word;
}

// The bytes of the whole block, 0 when they cannot be counted.
template <class Node> std::size_t qzEntryBytes(std::size_t entryBytes) {
    const std::size_t bytes = qzNodeOffset(entryBytes) + sizeof(Node);
    return bytes > entryBytes ? bytes : 0;
}

template <class Node> Node* qzNodeIn(char* block, std::size_t entryBytes) {
    return reinterpret_cast<Node*>(block + qzNodeOffset(entryBytes));
}

template <class Node> Node*& qzPreviousOf(Node* node) { return reinterpret_cast<Node**>(node)[-1]; }

// Whether a container made the node, rather than a program. The block of another
// node ends before that would stand here.
template <class Node> bool qzStandsInBlock(const Node* node, std::size_t entryBytes) {
    return node->kvmem &&
           reinterpret_cast<const char*>(node) == node->kvmem + qzNodeOffset(entryBytes);
}

// For a key and a value; null for an entry of no bytes, and where Try is, when
// there is no memory.
template <class Node> char* qzTryNewBlock(std::size_t entryBytes) {
    return static_cast<char*>(qzRawTryAlloc(entryBytes ? qzEntryBytes<Node>(entryBytes) : 0));
}
template <class Node> char* qzNewBlock(std::size_t entryBytes) {
    char* const block = qzTryNewBlock<Node>(entryBytes);
    if (!block && entryBytes) qzRawExhausted();
    return block;
}

template <class Node> Node* qzNewNode(char* block, std::size_t entryBytes, Node* next) {
    if (!block) return new Node(block, next);
    return new (block + qzNodeOffset(entryBytes)) Node(block, next);
}

template <class Node> void qzFreeNode(Node* node, std::size_t entryBytes) {
    if (qzStandsInBlock(node, entryBytes)) {
        qzRawFree(node->kvmem);
    } else {
        delete node;
    }
}

#endif
