// qzChainPlace: where a key is among the chains of a dictionary or set, or where
// it would go.
#ifndef QZ_UTIL_CHAINPLACE_H
#define QZ_UTIL_CHAINPLACE_H

#include "util/Export.h"

// Node is a bucket with `kvmem` and `next`.
template <class Node> struct QZ_EXPORT qzChainPlace {
    unsigned chain;
    Node* node;     // null when the key is absent
    Node* previous; // null when node heads its chain
    unsigned hash;  // of the key in the container's index, 0 when not known

    // Walks one chain; Heads is the array of chain heads, matches(kvmem) tells
    // whether a node's key is the one that is looked for.
    template <class Heads, class Matches>
    static qzChainPlace find(const Heads& heads, unsigned chain, Matches matches) {
        Node* previous = nullptr;
        for (Node* node = heads[chain]; node; previous = node, node = node->next) {
            if (matches(node->kvmem)) return {chain, node, previous, 0};
        }
        return {chain, nullptr, nullptr, 0};
    }
};

#endif
