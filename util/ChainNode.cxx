#include "util/ChainNode.h"

#include <cstdint>

#include "util/detail/EntryBlock.h"

namespace {

// The word in front of a node that is being deleted: 0 when it stands alone, else
// the address of the block it stands in, which goes with it, plus 1. Until then
// the word of a node in a block holds the address of another node, or anything.
std::uintptr_t& wordBefore(void* node) { return static_cast<std::uintptr_t*>(node)[-1]; }

void* standAlone(void* memory) {
    if (!memory) return nullptr;
    void* const node = static_cast<char*>(memory) + alignof(std::max_align_t);
    wordBefore(node) = 0;
    return node;
}

} // namespace

void* qzChainNode::operator new(std::size_t bytes) {
    return standAlone(qzRawAlloc(alignof(std::max_align_t) + bytes));
}

void* qzChainNode::operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return standAlone(qzRawTryAlloc(alignof(std::max_align_t) + bytes));
}

void qzChainNode::operator delete(void* node) noexcept {
    if (!node) return;
    const std::uintptr_t word = wordBefore(node);
    qzRawFree(word ? reinterpret_cast<void*>(word - 1)
                   : static_cast<char*>(node) - alignof(std::max_align_t));
}

void qzChainNode::operator delete(void* node, const std::nothrow_t&) noexcept {
    operator delete(node);
}

// A node on the stack has no word of ours in front of it: ask the block instead.
void qzChainNode::release(char* kvmem) {
    if (qzRawReaches(kvmem, this)) {
        wordBefore(this) = reinterpret_cast<std::uintptr_t>(kvmem) + 1;
    } else {
        qzRawFree(kvmem);
    }
}
