// What dictionaries and sets share: separate chaining over a table of heads.
//
// Invariants of such a table:
// (1) A node hangs in exactly one chain; heads and `next` links are its only
//     owners, new nodes go in at the head.
// (2) The number of chains is fixed from construction on; only reading from a
//     transcriber replaces the table.
// (3) An attached iterator is registered with its container exactly once and
//     stands on a linked node; registration order is kept.
// (4) Every removal reports its node through qzInvalidateIters after unlinking
//     and before freeing it, with the node's own `next` intact.
//
// Heads is the array of chain heads, Node a bucket with `kvmem` and `next`.
#ifndef QZ_UTIL_DETAIL_CHAINS_H
#define QZ_UTIL_DETAIL_CHAINS_H

#include "util/ChainPlace.h"
#include "util/detail/RawMemory.h"

const unsigned qzDefaultChains = 31;

// XOR of the whole 32-bit words of a key; trailing bytes take no part.
inline unsigned qzHashWords(const void* key, unsigned nbytes) {
    const char* p = static_cast<const char*>(key);
    unsigned hash = 0;
    for (; nbytes >= 4; nbytes -= 4, p += 4)
        hash ^= qzLoadWord(p);
    return hash;
}

template <class Node, class Heads> void qzUnlink(Heads& heads, const qzChainPlace<Node>& place) {
    if (place.previous) {
        place.previous->next = place.node->next;
    } else {
        heads[place.chain] = place.node->next;
    }
}

// Calls visit(node, chain) in iteration order until it returns false; the node
// at hand may be unlinked and freed. Returns whether all were visited. Nodes lie
// anywhere: those of chains to come are asked for while the memory has time.
template <class Heads, class Visit> bool qzVisitNodes(const Heads& heads, Visit visit) {
    const unsigned ahead = 8;
    const unsigned chains = heads.length();
    for (unsigned chain = 0; chain < chains; ++chain) {
        if (chains - chain > ahead) __builtin_prefetch(heads[chain + ahead]);
        for (auto* node = heads[chain]; node;) {
            auto* const next = node->next;
            if (!visit(node, chain)) return false;
            node = next;
        }
    }
    return true;
}

// Moves every iterator that stands on the node to the entry after it and marks
// it as standing behind a removed one. Each iterator that is registered now is
// visited once, in registration order; one that runs off the end leaves the
// registry, and the next takes its index.
template <class Iters, class Node> void qzInvalidateIters(const Iters& iters, const Node* node) {
    unsigned i = 0;
    for (unsigned left = iters.length(); left > 0; --left) {
        auto* const iter = iters[i];
        if (iter->node == node) {
            iter->leaveNode();
            if (!iter->attached()) continue;
        }
        ++i;
    }
}

#endif
