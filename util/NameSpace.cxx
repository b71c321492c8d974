// The tree is ordered by hash, and equal hashes by name, every name left of its
// extensions. It is not balanced: names that arrive in the order of their hashes
// make a list of it. Nothing here recurses, so that costs time but no stack.
#include "util/NameSpace.h"

#include "util/detail/RawMemory.h"

#include <algorithm>
#include <cassert>
#include <climits>
#include <cstdint>
#include <new>

namespace {

const unsigned initialTableSize = 100;
const std::size_t entryBytes = sizeof(void*); // one entry of the table

// Takes the characters in pairs from both ends inward.
//
// Deliberate: characters are signed on every machine, and the middle one of an
// odd length counts twice. Nodes show their hash, and it orders the tree.
// Pinned by NameSpace.HashPairsSignedCharactersFromBothEnds.
unsigned hashName(const char* name, unsigned length) {
    const signed char* text = reinterpret_cast<const signed char*>(name);
    const unsigned pairs = length / 2 + length % 2;
    unsigned hash = 0;
    for (unsigned i = 0; i < pairs; ++i)
        hash = hash * 729 + static_cast<unsigned>(text[i] * 27 + text[length - 1 - i]);
    return hash;
}

// Negative: the name belongs left of the node; zero: it is the node's.
int compareToNode(unsigned hash, const char* name, unsigned length, const NameSpace_Node& node) {
    if (hash != node.hash) return hash < node.hash ? -1 : 1;
    const int order = length ? std::strncmp(name, node.name, length) : 0;
    const bool properPrefix = order == 0 && length < std::strlen(node.name);
    return properPrefix ? -1 : order;
}

} // namespace

NameSpace::NameSpace(int (*init)(NameSpace*), int numbersByCaller) {
    growTable(nullAtom);
    if (init(this) != 0) std::exit(-1);
    explicitNumbers = numbersByCaller;
    firstOwnedAtom = maxAtom + 1;
}

NameSpace::~NameSpace() {
    freeAllAtoms();
    qzRawFree(table); // still there when there were no atoms
}

unsigned long NameSpace::makeAtom(const char* name, int create) {
    return makeAtom(name, static_cast<unsigned>(std::strlen(name)), create);
}

unsigned long NameSpace::makeAtom(const char* name, unsigned length, int create) {
    if (explicitNumbers && create) atomError();
    return internAtom(maxAtom + 1, name, length, create);
}

unsigned long NameSpace::makeAtom(unsigned long atom, const char* name, unsigned length,
                                  int create) {
    if (!explicitNumbers && create) atomError();
    return internAtom(atom, name, length, create);
}

unsigned long NameSpace::internAtom(unsigned long atom, const char* name, unsigned length,
                                    int create) {
    const unsigned hash = hashName(name, length);
    NameSpace_Node** position = &root;
    while (*position) {
        const int order = compareToNode(hash, name, length, **position);
        if (order == 0) return (*position)->atom;
        position = order < 0 ? &(*position)->left : &(*position)->right;
    }
    if (!create) return nullAtom;

    assert(table);
    growTable(atom);
    *position = makeNode(atom, hash, name, length);
    maxAtom = std::max(maxAtom, atom);
    table[atom] = *position;
    return atom;
}

int NameSpace::validAtom(unsigned long atom) const {
    return atom != nullAtom && atom <= maxAtom && table[atom] != nullptr;
}

const char* NameSpace::nameForAtom(unsigned long atom) const {
    if (atom > maxAtom) return nullptr;
    assert(table);
    return table[atom] ? table[atom]->name : nullptr;
}

void NameSpace::atomError() const { std::abort(); }

// Turns left children up until the node has none, then releases it and goes on
// with its right child: linear, and no stack however deep the tree.
void NameSpace::freeAtom(NameSpace_Node* node) {
    while (node) {
        if (NameSpace_Node* left = node->left) {
            node->left = left->right;
            left->right = node;
            node = left;
        } else {
            NameSpace_Node* right = node->right;
            qzRawFree(node);
            node = right;
        }
    }
}

void NameSpace::freeAllAtoms() {
    if (!root) return;
    freeAtom(root);
    root = nullptr;
    qzRawFree(table);
    table = nullptr;
    maxAtom = nullAtom;
}

// A node and, but for the names of init, the copy of its name in one block:
// whoever releases the node need not know whether the name was copied.
NameSpace_Node* NameSpace::makeNode(unsigned long atom, unsigned hash, const char* name,
                                    unsigned length) {
    const std::size_t copyBytes = firstOwnedAtom ? std::size_t{length} + 1 : 0;
    char* block = static_cast<char*>(qzRawTryAlloc(sizeof(NameSpace_Node) + copyBytes));
    if (!block) atomError();
    if (copyBytes) {
        char* copy = block + sizeof(NameSpace_Node);
        qzRawMove(copy, name, length);
        copy[length] = '\0';
        name = copy;
    }
    return new (block) NameSpace_Node{nullptr, nullptr, atom, hash, name};
}

// Doubles the table until it has an entry for the atom; new entries are null.
void NameSpace::growTable(unsigned long atom) {
    if (atom < tableSize) return;
    const std::size_t maxEntries = std::min<std::size_t>(UINT_MAX, PTRDIFF_MAX / entryBytes);
    unsigned newSize = tableSize ? tableSize : initialTableSize;
    while (atom >= newSize) {
        if (newSize > maxEntries / 2) atomError();
        newSize *= 2;
    }

    void* block = qzRawTryAlloc(newSize * entryBytes);
    if (!block) atomError();
    NameSpace_Node** newTable = static_cast<NameSpace_Node**>(block);
    qzRawMove(newTable, table, tableSize * entryBytes);
    qzRawZero(newTable + tableSize, (newSize - tableSize) * entryBytes);
    qzRawFree(table);
    table = newTable;
    tableSize = newSize;
}
