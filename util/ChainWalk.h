// How the iterators of dictionaries and sets find the next chain that has a node.
#ifndef QZ_UTIL_CHAINWALK_H
#define QZ_UTIL_CHAINWALK_H

#include <cstdint>

// Index of the first chain at or after `chain` that has a node; the number of
// chains when there is none. Every third chain of a well-filled table is empty,
// at random: testing four together spares the processor most wrong guesses.
template <class Node> unsigned qzNextFilled(Node* const* heads, unsigned chain, unsigned chains) {
    for (; chains - chain >= 4; chain += 4) {
        const unsigned filled = (heads[chain] != nullptr) | (heads[chain + 1] != nullptr) << 1 |
                                (heads[chain + 2] != nullptr) << 2 |
                                (heads[chain + 3] != nullptr) << 3;
        if (filled) return chain + static_cast<unsigned>(__builtin_ctz(filled));
    }
    while (chain < chains && !heads[chain])
        ++chain;
    return chain;
}

// Puts an iterator on the first node behind the chain it is in; false, with a
// null node, when there is none left.
template <class Iter, class Heads> bool qzEnterNextChain(Iter& iter, const Heads& heads) {
    const unsigned chains = heads.length();
    const auto* table = chains ? &heads[0] : nullptr;
    iter.bucket = qzNextFilled(table, iter.bucket + 1, chains);
    if (iter.bucket == chains) {
        iter.node = nullptr;
        return false;
    }
    // Entries lie anywhere, each with its node at the end: without asking for both
    // ahead of time every step would wait for the memory.
    const unsigned ahead = 12;
    if (chains - iter.bucket > ahead) {
        const auto soon = reinterpret_cast<std::uintptr_t>(table[iter.bucket + ahead]);
        __builtin_prefetch(reinterpret_cast<const void*>(soon));
        __builtin_prefetch(reinterpret_cast<const void*>(soon - 16));
    }
    iter.node = table[iter.bucket];
    iter.flags &= ~Iter::removedBit;
    return true;
}

#endif
