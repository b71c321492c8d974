// BacktrackStack: what a match may have to come back to.
//
// A record is two or three words, the last of them a node whose opcode tells
// what the others are (words listed from the bottom up):
//
//   position, BRANCH             go on at position with this alternative
//   lowest, position, STAR/PLUS  go on at position with what comes after the
//                                run; later with each position down to lowest
//   old bound, OPEN/CLOSE        give the group's start or end its old value
//
// Records live in chunks, the first of them inside the object and each further
// one larger up to a limit; none is copied when the stack grows, and none
// straddles two chunks. Chunks are kept until the stack is destroyed.
#ifndef QZ_REGEX_DETAIL_BACKTRACKSTACK_H
#define QZ_REGEX_DETAIL_BACKTRACKSTACK_H

#include "util/detail/RawMemory.h"

namespace qzReg {

class BacktrackStack {
  public:
    BacktrackStack() : chunk(&bottom), base(bottomWords), top(base), limit(base + bottomSize) {}
    BacktrackStack(const BacktrackStack&) = delete;
    BacktrackStack& operator=(const BacktrackStack&) = delete;
    ~BacktrackStack() {
        for (Chunk* above = bottom.above; above;) {
            Chunk* const next = above->above;
            qzRawFree(above);
            above = next;
        }
    }

    bool empty() const { return top == base && chunk == &bottom; }

    // False when there is no memory for the record.
    bool push(const char* word, const char* node) {
        if (limit - top < 2 && !enterNext()) return false;
        top[0] = word;
        top[1] = node;
        top += 2;
        return true;
    }
    bool push(const char* lowest, const char* position, const char* node) {
        if (limit - top < 3 && !enterNext()) return false;
        top[0] = lowest;
        top[1] = position;
        top[2] = node;
        top += 3;
        return true;
    }

    // The node of the last record; its words follow, from the top down. Not for
    // an empty stack.
    const char* popNode() {
        if (top == base) leave();
        return popWord();
    }
    const char* popWord() { return *--top; }

  private:
    struct Chunk {
        Chunk* below = nullptr;
        Chunk* above = nullptr;
        const char** base = nullptr;
        const char** top = nullptr; // while another chunk is in use
        const char** limit = nullptr;
    };
    static constexpr std::size_t bottomSize = 192;
    static constexpr std::size_t largestSize = 1024 * 1024;

    void use(Chunk* next) {
        chunk = next;
        base = next->base;
        top = next->top;
        limit = next->limit;
    }
    bool enterNext();
    void leave();

    Chunk* chunk; // the chunk in use, whose fields are unpacked below
    const char** base;
    const char** top;
    const char** limit;
    Chunk bottom;
    const char* bottomWords[bottomSize]; // left uninitialised: most matches use a few
};

} // namespace qzReg

#endif
