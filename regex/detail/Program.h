// The program that qzregcomp writes and qzregexec walks.
//
//   program := magic, node*
//   node    := opcode (1 byte), next (2 bytes, high byte first), operand?
//   operand := text, NUL              (EXACTLY, ANYOF, ANYBUT)
//            | the node that follows  (BRANCH, STAR, PLUS)
//
// `next` is the distance to the node that comes next in matching, forward, or
// backward in a BACK node; 0 means that there is none.
//
// What the pieces of a pattern become, with the next pointers as arrows:
//
//   x|y    BRANCH x -> J   BRANCH y -> J   J       BRANCH -> BRANCH -> J
//   (x)    OPEN+n -> BRANCH x -> CLOSE+n
//   c*     STAR c                                  c is one character wide
//   (x)*   BRANCH (x) -> BACK   BRANCH NOTHING     BACK -> the first BRANCH
//   (x)+   (x) -> BRANCH BACK   BRANCH NOTHING     BACK -> (x)
//   x?     BRANCH x -> NOTHING  BRANCH NOTHING
//
// The loops and x? are left through their NOTHING node.
#ifndef QZ_REGEX_DETAIL_PROGRAM_H
#define QZ_REGEX_DETAIL_PROGRAM_H

namespace qzReg {

constexpr unsigned char magic = 0x9C;
constexpr unsigned nodeSize = 3;
constexpr unsigned maxGroup = 9;

enum Opcode : unsigned char {
    END = 0,
    BOL = 1,
    EOL = 2,
    ANY = 3,
    ANYOF = 4,
    ANYBUT = 5,
    BRANCH = 6,
    BACK = 7,
    EXACTLY = 8,
    NOTHING = 9,
    STAR = 10,
    PLUS = 11,
    WORDA = 12,
    WORDZ = 13,
    OPEN = 20, // + 1 to 9
    CLOSE = 30 // + 1 to 9
};

inline unsigned char opcode(const char* node) { return static_cast<unsigned char>(*node); }

inline const char* operand(const char* node) { return node + nodeSize; }
inline char* operand(char* node) { return node + nodeSize; }

inline unsigned nextOffset(const char* node) {
    const unsigned high = static_cast<unsigned char>(node[1]);
    return high << 8 | static_cast<unsigned char>(node[2]);
}

// The node that comes next in matching, or null.
inline const char* regnext(const char* node) {
    const unsigned offset = nextOffset(node);
    if (offset == 0) return nullptr;
    return opcode(node) == BACK ? node - offset : node + offset;
}

// The alternative after a BRANCH, or null when it is the last.
inline const char* nextBranch(const char* branch) {
    const char* next = regnext(branch);
    return next && opcode(next) == BRANCH ? next : nullptr;
}

} // namespace qzReg

#endif
