// IndexedChains: the chains of a dictionary or set, and the index of a large one.
//
// A view for one operation; Heads is the array of chain heads. While an index
// fits, every node stands in its entry's block, and its predecessor's address in
// front of it, so that a removal need not walk, either.
#ifndef QZ_UTIL_DETAIL_INDEXEDCHAINS_H
#define QZ_UTIL_DETAIL_INDEXEDCHAINS_H

#include <type_traits>

#include "util/detail/Chains.h"
#include "util/detail/EntryBlock.h"
#include "util/detail/KeyIndex.h"
#include "util/detail/SideTable.h"

// The indexes, by the addresses of their containers.
extern SideTable qzKeyIndexes;

inline void qzForgetIndex(const void* container) {
    KeyIndex::destroy(static_cast<KeyIndex*>(qzKeyIndexes.take(container)));
}

template <class Heads> class IndexedChains {
  public:
    using Node = std::remove_pointer_t<typename Heads::Element>;
    using Place = qzChainPlace<Node>;

    IndexedChains(const void* container, const Heads& heads, unsigned entries)
        : container(container), chains{&heads[0], heads.length(), entries} {}

    // The index that is there and fits, or null.
    static KeyIndex* fitting(const void* container, const Heads& heads, unsigned entries) {
        KeyIndex* const found = known(container);
        return found && found->fits(&heads[0], heads.length(), entries) ? found : nullptr;
    }
    // The same. A class derived from the container's may have changed the chains
    // without asking: one that has come not to fit is dropped, before it seems to
    // fit again.
    static KeyIndex* current(const void* container, const Heads& heads, unsigned entries) {
        KeyIndex* const found = fitting(container, heads, entries);
        if (!found) dropMisfit(container);
        return found;
    }
    // Where none fits: makes it if the keys are of a known kind, in time that grows
    // with the entries; null when there is nothing to search in.
    KeyIndex* make(qzKeyKind kind, std::size_t entryBytes) const {
        dropMisfit(container);
        if (kind == qzKeyKind::other || known(container)) return nullptr;
        return build(kind, entryBytes);
    }

    static Place find(const KeyIndex& index, const void* key, unsigned chain) {
        const KeyIndex::Found found = index.find(key);
        if (!found.block) return {chain, nullptr, nullptr, found.hash};
        Node* const node = reinterpret_cast<Node*>(found.block + index.nodeOffset);
        return {chain, node, qzPreviousOf(node), found.hash};
    }
    static void added(KeyIndex& index, Node* node, unsigned hash) {
        qzPreviousOf(node) = nullptr;
        if (node->next) qzPreviousOf(node->next) = node;
        if (!hash) hash = index.hash(node->kvmem);
        if (index.insert(node->kvmem, hash)) return;
        index.giveUp();
    }
    static void removing(KeyIndex& index, const Place& place) {
        Node* const node = place.node;
        if (node->next) qzPreviousOf(node->next) = place.previous;
        index.erase(node->kvmem, place.hash ? place.hash : index.hash(node->kvmem));
    }

  private:
    static KeyIndex* known(const void* container) {
        return static_cast<KeyIndex*>(qzKeyIndexes.find(container));
    }
    static void dropMisfit(const void* container) {
        const KeyIndex* const found = known(container);
        if (found && !found->givenUp()) qzForgetIndex(container);
    }
    KeyIndex* build(qzKeyKind kind, std::size_t entryBytes) const;
    enum Outcome { complete, notNow, never };
    Outcome fill(KeyIndex& index, std::size_t entryBytes) const;
    Outcome enter(KeyIndex& index, Node* node, unsigned chain) const;

    const void* const container;
    const KeyIndex::Chains chains;
};

template <class Heads>
KeyIndex* IndexedChains<Heads>::build(qzKeyKind kind, std::size_t entryBytes) const {
    KeyIndex* const index = KeyIndex::make(kind, chains, qzNodeOffset(entryBytes));
    if (!index) return nullptr;
    const Outcome outcome = fill(*index, entryBytes);
    if (outcome == never) index->giveUp();
    if (outcome == notNow || !qzKeyIndexes.set(container, index)) {
        KeyIndex::destroy(index);
        return nullptr;
    }
    return outcome == complete ? index : nullptr;
}

template <class Heads>
typename IndexedChains<Heads>::Outcome IndexedChains<Heads>::fill(KeyIndex& index,
                                                                  std::size_t entryBytes) const {
    Node* const* const heads = static_cast<Node* const*>(chains.heads);
    for (unsigned chain = 0; chain < chains.number; ++chain) {
        Node* previous = nullptr;
        for (Node* node = heads[chain]; node; node = node->next) {
            if (index.count() == chains.entries) return notNow; // there are too many
            if (!qzStandsInBlock(node, entryBytes)) return never;
            const Outcome outcome = enter(index, node, chain);
            if (outcome != complete) return outcome;
            qzPreviousOf(node) = previous;
            previous = node;
        }
    }
    return index.count() == chains.entries ? complete : notNow;
}

template <class Heads>
typename IndexedChains<Heads>::Outcome IndexedChains<Heads>::enter(KeyIndex& index, Node* node,
                                                                   unsigned chain) const {
    if (!index.isComplete(node->kvmem)) return notNow;
    if (!index.isAtHome(node->kvmem, chain)) return never;
    const KeyIndex::Found found = index.find(node->kvmem);
    if (found.block) return never;
    return index.insert(node->kvmem, found.hash) ? complete : never;
}

#endif
