// Guide: what the matcher knows about a program beyond its bytes.
//
// qzregcomp puts it into the block behind the program: for every node the set
// of characters that it can go on with, and how to find the places where a
// match can begin. Everything in it could be read off the program; it saves
// time and changes no result. A block whose program or header fields were
// changed after compilation is matched from its bytes alone.
//
// Cost: 34 bytes per node and 3 per program byte.
#ifndef QZ_REGEX_DETAIL_GUIDE_H
#define QZ_REGEX_DETAIL_GUIDE_H

#include "regex/RegExp.h"
#include "regex/detail/LiteralSearch.h"

#include <cstddef>
#include <cstdint>

namespace qzReg {

// A set of characters; NUL stands for the end of the text.
struct CharSet {
    std::uint32_t bits[8];

    bool has(char c) const {
        const auto code = static_cast<unsigned char>(c);
        return bits[code >> 5] >> (code & 31) & 1;
    }
    void add(char c) {
        const auto code = static_cast<unsigned char>(c);
        bits[code >> 5] |= std::uint32_t{1} << (code & 31);
    }
    void remove(char c) {
        const auto code = static_cast<unsigned char>(c);
        bits[code >> 5] &= ~(std::uint32_t{1} << (code & 31));
    }
};

struct Guide {
    // What the text has to go on with for the node to match.
    const CharSet& first(const char* node) const { return sets[numbers[node - program]]; }

    // The number, below choiceCount, of a node with several ways to go on, or of
    // a group's end, where several ways come together.
    unsigned choice(const char* node) const { return numbers[node - program]; }

    // Of a STAR or PLUS: nothing that comes next can begin with a character
    // that it repeats, so that only the whole run is worth trying.
    bool wholeRun(const char* node) const { return numbers[node - program + 1] != 0; }

    const char* program;
    const CharSet* sets;
    // At the offset of a node: its number, choices before all others. At the
    // offset after that of a STAR or PLUS: wholeRun().
    const std::uint16_t* numbers;
    unsigned choiceCount;

    Literal lead;             // that every match begins with; no text when there is none
    Literal must;             // to look for before any match is tried; regmust if there is one
    const char* leadRun;      // the STAR or PLUS that every match begins with, or null
    unsigned char stops[256]; // by character: whether to stop there in search of a start
    char onlyStart;           // the one character that a match can begin with, or 0

    // The block as compiled.
    char regstart;
    const char* regmust;
    int regmlen;
    const char* programCopy;
};

// Bytes of a block with a program of that many bytes and nodes.
std::size_t guidedBlockSize(unsigned programSize, unsigned nodeCount);

// Fills the part of the block behind the program, all other fields being set.
void buildGuide(qzregexp* prog, unsigned nodeCount);

// The guide of a block, or null when it has none or was changed since.
const Guide* guideOf(const qzregexp* prog);

} // namespace qzReg

#endif
