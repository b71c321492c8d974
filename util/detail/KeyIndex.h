// KeyIndex: finds the entries of a large dictionary or set by their keys.
//
// The chains say where an entry is. Their number is fixed, so a walk along one
// is long in a large container. If its keys are of a kind that is known here,
// such a container has an index beside it, from a hash of the whole key to the
// block that holds it.
//
// It finds what a walk would: the first node of the chain whose key compares
// equal. For this it holds entries of which is certain:
// (1) Keys that compare equal have equal hashes here: of a text counts what
//     stands in front of the first NUL.
// (2) Every key hangs in the chain that its hash() says. Texts which are equal up
//     to a NUL may differ behind it, and hang in different chains then.
// (3) No two keys of one chain compare equal.
//
// A hash table with open addressing by groups of 16 slots, each with a byte of
// the hash: a group is searched with a few instructions (M. Kulukundis, Designing
// a Fast, Efficient, Cache-friendly Hash Table, Step by Step, CppCon 2017).
//
// Units: room and entries are counted in keys.
// Errors: without memory there is no index, or no room in it.
#ifndef QZ_UTIL_DETAIL_KEYINDEX_H
#define QZ_UTIL_DETAIL_KEYINDEX_H

#include <cstddef>

#include "util/KeyKind.h"

class KeyIndex {
  public:
    // What it is an index of; for anything else it is worthless.
    struct Chains {
        const void* heads;
        unsigned number;
        unsigned entries;
    };
    struct Found {
        char* block;   // null when the key is absent
        unsigned hash; // of the key
    };

    // Without entries, with room for those of the chains; null when there is no
    // memory. nodeOffset is where a node stands in its block.
    static KeyIndex* make(qzKeyKind kind, const Chains& chains, std::size_t nodeOffset);
    static void destroy(KeyIndex* index);

    // An index that was given up has no entries, and stands for walking.
    void giveUp();
    bool givenUp() const { return !tags; }
    bool fits(const void* heads, unsigned number, unsigned entries) const {
        return chains.heads == heads && chains.number == number && live == entries;
    }

    Found find(const void* key) const;
    char* findBlock(const void* key) const;
    unsigned hash(const void* key) const;
    // Whether the key is what it will stay: a text from a stream may not be.
    bool isComplete(const void* key) const;
    // Whether the key hangs where its hash() says; see (2).
    bool isAtHome(const void* key, unsigned chain) const;
    // For an entry that is not there. False, changing nothing, when there is no
    // room, or when too many hashes are alike.
    bool insert(char* block, unsigned hash);
    void erase(const char* block, unsigned hash);

    unsigned count() const { return live; }

    const std::size_t nodeOffset;

  private:
    using Tag = unsigned char; // a byte of the hash, or one of these
    static const Tag empty = 0;
    static const Tag erased = 1;
    static const unsigned groupSize = 16;
    static const unsigned usableOfGroup = 14; // on average: some slot stays empty
    // Few groups are full, and hashes that agree by chance never fill so many.
    static const unsigned maxProbes = 64;

    KeyIndex(qzKeyKind kind, const Chains& chains, std::size_t nodeOffset)
        : nodeOffset(nodeOffset), kind(kind), chains(chains), tags(nullptr), blocks(nullptr),
          groups(0), live(0), unused(0) {}
    template <class Keys> char* findAs(const void* key, unsigned hash) const;
    static Tag tagOf(unsigned hash);
    unsigned home(unsigned hash) const;
    unsigned after(unsigned group) const { return group + 1 == groups ? 0 : group + 1; }
    unsigned slotFor(unsigned hash) const;
    bool makeRoom();
    bool rebuild(unsigned newGroups);
    void prefetch(unsigned slot) const;

    const qzKeyKind kind;
    Chains chains; // the entries are those of the beginning
    Tag* tags;     // in one block of memory with blocks
    char** blocks; // by slot
    unsigned groups;
    unsigned live;   // entries
    unsigned unused; // slots that may still lose their emptiness
};

#endif
