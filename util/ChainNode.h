// qzChainNode: where the nodes of dictionaries and sets live.
//
// The nodes that a container makes stand in the block of their entry, behind
// key and value; one that is made with `new` stands alone, and its block is
// freed with it. Either may be deleted. In front of each is a word that is not
// part of the object.
#ifndef QZ_UTIL_CHAINNODE_H
#define QZ_UTIL_CHAINNODE_H

#include <cstddef>
#include <new>

#include "util/Export.h"

class QZ_EXPORT qzChainNode {
  public:
    static void* operator new(std::size_t bytes);
    static void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept;
    static void* operator new(std::size_t, void* at) noexcept { return at; }
    static void operator delete(void* node) noexcept;
    static void operator delete(void* node, const std::nothrow_t&) noexcept;
    static void operator delete(void*, void*) noexcept {}

  protected:
    qzChainNode() = default;
    ~qzChainNode() = default;
    // For the destructor of a node that owns this block.
    void release(char* kvmem);
};

#endif
