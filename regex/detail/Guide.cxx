// Which characters a node can go on with, by the nodes it leads to:
//
//   first(EXACTLY), first(ANY), ...  the character or characters themselves
//   first(EOL) = {end}               first(END) = everything
//   first(BRANCH) = first(operand) + first(the next BRANCH, if any)
//   first(STAR)   = first(operand) + first(next)
//   first(PLUS)   = first(operand)
//   first(any other node) = first(next)
//
// Nodes lead to nodes behind them, except BACK. One pass from the last node to
// the first therefore settles a program without loops; with loops the passes
// are repeated until nothing changes, some two times and at most once more than
// loops are nested, as the body of a loop never matches the empty string.
#include "regex/detail/Guide.h"

#include "regex/detail/Program.h"
#include "util/detail/RawMemory.h"

#include <cstring>

namespace qzReg {

namespace {

static_assert(alignof(Guide) <= alignof(std::max_align_t), "malloc aligns the block for it");

std::size_t roundUp(std::size_t bytes) {
    const std::size_t unit = alignof(Guide);
    return (bytes + unit - 1) / unit * unit;
}

// block := header and program, Guide, sets, numbers, order, copy of the program
std::size_t guideOffset(unsigned programSize) { return roundUp(sizeof(qzregexp) + programSize); }

bool sameSet(const CharSet& a, const CharSet& b) {
    return std::memcmp(&a, &b, sizeof(CharSet)) == 0;
}

void addAll(CharSet& set, const CharSet& other) {
    for (unsigned i = 0; i < 8; ++i)
        set.bits[i] |= other.bits[i];
}

bool overlap(const CharSet& a, const CharSet& b) {
    std::uint32_t common = 0;
    for (unsigned i = 0; i < 8; ++i)
        common |= a.bits[i] & b.bits[i];
    return common != 0;
}

CharSet complement(const CharSet& set) {
    CharSet others;
    for (unsigned i = 0; i < 8; ++i)
        others.bits[i] = ~set.bits[i];
    return others;
}

// The only member of the set; NUL when it is NUL or there are several.
char onlyMember(const CharSet& set) {
    if (set.has('\0')) return '\0';
    char member = '\0';
    for (unsigned i = 0; i < 8; ++i) {
        const std::uint32_t word = set.bits[i];
        if (word == 0) continue;
        if (member != '\0' || (word & (word - 1)) != 0) return '\0';
        member = static_cast<char>(i * 32 + static_cast<unsigned>(__builtin_ctz(word)));
    }
    return member;
}

// How often a character is met in prose, source text and logs: its place in the
// list, or 0 for the rest.
struct Frequencies {
    constexpr Frequencies() {
        unsigned char place = 0;
        for (const char c :
             "zqjxZQXJ~^@%KYVW{}`&!?$#\\*|<>+UGHFBM;'DPOLNCRIASETkvywbg7986543[]()/\"=_,:-.12"
             "mpfudlchrsnioate0 ")
            of[static_cast<unsigned char>(c)] = ++place;
    }
    unsigned operator[](char c) const { return of[static_cast<unsigned char>(c)]; }

    unsigned char of[256] = {};
};
constexpr Frequencies frequencies;

// With the two characters that text in general has least of.
Literal literalAt(const char* exactly) {
    Literal literal{operand(exactly), 0, 0, 0};
    literal.length = static_cast<unsigned>(std::strlen(literal.text));
    unsigned least = ~0u, second = ~0u;
    for (unsigned i = 0; i < literal.length; ++i) {
        const unsigned often = frequencies[literal.text[i]];
        if (often < least) {
            second = least;
            literal.companion = literal.rarest;
            least = often;
            literal.rarest = i;
        } else if (often < second) {
            second = often;
            literal.companion = i;
        }
    }
    return literal;
}

// Whether the table keeps marks for the node: several ways go on from it, or, at
// the end of a group, come together in it.
bool isMarked(const char* node) {
    const unsigned char op = opcode(node);
    return op == STAR || op == PLUS || op > CLOSE || (op == BRANCH && nextBranch(node));
}

class Builder {
  public:
    Builder(qzregexp* prog, unsigned nodeCount);
    void build();

  private:
    void numberNodes();
    bool findSets();
    CharSet setOf(const char* node) const;
    const CharSet& set(const char* node) const { return guide->first(node); }
    void markWholeRuns();
    void findLead();
    void findMust();

    const qzregexp* prog;
    const char* program;
    unsigned programSize;
    unsigned nodeCount;
    Guide* guide;
    CharSet* sets;
    std::uint16_t* numbers;
    std::uint16_t* order; // offsets of the nodes, in the order of the program
    char* copy;
    bool loops = false;
};

Builder::Builder(qzregexp* prog, unsigned nodeCount)
    : prog(prog), program(prog->program), programSize(prog->programSize), nodeCount(nodeCount) {
    char* const block = reinterpret_cast<char*>(prog);
    guide = reinterpret_cast<Guide*>(block + guideOffset(programSize));
    sets = reinterpret_cast<CharSet*>(guide + 1);
    numbers = reinterpret_cast<std::uint16_t*>(sets + nodeCount);
    order = numbers + programSize;
    copy = reinterpret_cast<char*>(order + nodeCount);
}

void Builder::build() {
    *guide = Guide{};
    guide->program = program;
    guide->sets = sets;
    guide->numbers = numbers;
    guide->regstart = prog->regstart;
    guide->regmust = prog->regmust;
    guide->regmlen = prog->regmlen;
    guide->programCopy = copy;
    qzRawMove(copy, program, programSize);
    numberNodes();
    qzRawZero(sets, nodeCount * sizeof(CharSet));
    while (findSets() && loops)
        continue;
    markWholeRuns();
    findLead();
    findMust();
}

void Builder::numberNodes() {
    unsigned others = nodeCount;
    const char* node = program + 1;
    for (unsigned i = 0; i < nodeCount; ++i) {
        const auto offset = static_cast<std::uint16_t>(node - program);
        order[i] = offset;
        numbers[offset] =
            static_cast<std::uint16_t>(isMarked(node) ? guide->choiceCount++ : --others);
        const unsigned char op = opcode(node);
        if (op == BACK) loops = true;
        node = operand(node);
        if (op == EXACTLY || op == ANYOF || op == ANYBUT) node += std::strlen(node) + 1;
    }
}

// One pass; whether it changed anything.
bool Builder::findSets() {
    bool changed = false;
    for (unsigned i = nodeCount; i-- > 0;) {
        const char* const node = program + order[i];
        const CharSet found = setOf(node);
        CharSet& known = sets[numbers[order[i]]];
        if (sameSet(found, known)) continue;
        known = found;
        changed = true;
    }
    return changed;
}

CharSet Builder::setOf(const char* node) const {
    CharSet found{};
    switch (opcode(node)) {
    case END:
        return complement(found);
    case EOL:
        found.add('\0');
        return found;
    case ANY:
        found = complement(found);
        found.remove('\0');
        return found;
    case ANYOF:
    case ANYBUT:
        for (const char* member = operand(node); *member; ++member)
            found.add(*member);
        if (opcode(node) == ANYOF) return found;
        found = complement(found);
        found.remove('\0');
        return found;
    case EXACTLY:
        found.add(*operand(node));
        return found;
    case BRANCH:
        found = set(operand(node));
        if (const char* next = nextBranch(node)) addAll(found, set(next));
        return found;
    case STAR:
        found = set(operand(node));
        addAll(found, set(regnext(node)));
        return found;
    case PLUS:
        return set(operand(node));
    default:
        return set(regnext(node));
    }
}

void Builder::markWholeRuns() {
    for (unsigned i = 0; i < nodeCount; ++i) {
        const char* const node = program + order[i];
        if (opcode(node) != STAR && opcode(node) != PLUS) continue;
        numbers[order[i] + 1] = !overlap(set(operand(node)), set(regnext(node)));
    }
}

// Follows the nodes that every match goes through before its first character.
void Builder::findLead() {
    const CharSet& starts = set(program + 1);
    guide->onlyStart = onlyMember(starts);
    for (unsigned i = 0; i < 8; ++i) {
        for (std::uint32_t rest = starts.bits[i]; rest != 0; rest &= rest - 1)
            guide->stops[i * 32 + static_cast<unsigned>(__builtin_ctz(rest))] = 1;
    }
    guide->stops[0] = 1;
    bool tested = false; // passed a node that looks at the position
    for (const char* node = program + 1;;) {
        const unsigned char op = opcode(node);
        if (op == BRANCH && !nextBranch(node)) {
            node = operand(node);
        } else if (op > OPEN || op == BOL || op == WORDA || op == WORDZ) {
            if (op < OPEN) tested = true;
            node = regnext(node);
        } else {
            if ((op == STAR || op == PLUS) && !tested) guide->leadRun = node;
            if (op == EXACTLY) guide->lead = literalAt(node);
            return;
        }
    }
}

// Without a regmust, the longest literal on the way that every match takes.
// Looking for it costs no more than matching up to it, which a match has to do
// anyway; a pattern that says itself where to look does better without.
void Builder::findMust() {
    if (prog->regmust) {
        guide->must = literalAt(prog->regmust - nodeSize);
        return;
    }
    if (prog->reganch || guide->lead.length > 1) return;
    const char* longest = nullptr;
    std::size_t length = 0;
    for (const char* node = program + 1; node;) {
        const unsigned char op = opcode(node);
        if (op == EXACTLY && std::strlen(operand(node)) > length) {
            longest = node;
            length = std::strlen(operand(node));
        }
        if (op == BRANCH && !nextBranch(node)) {
            node = operand(node);
            continue;
        }
        while (const char* alternative = nextBranch(node))
            node = alternative;
        node = regnext(node);
    }
    if (longest) guide->must = literalAt(longest);
}

} // namespace

std::size_t guidedBlockSize(unsigned programSize, unsigned nodeCount) {
    const std::size_t perNode = sizeof(CharSet) + sizeof(std::uint16_t);
    const std::size_t perByte = sizeof(std::uint16_t) + 1;
    return guideOffset(programSize) + sizeof(Guide) + nodeCount * perNode + programSize * perByte;
}

void buildGuide(qzregexp* prog, unsigned nodeCount) { Builder(prog, nodeCount).build(); }

const Guide* guideOf(const qzregexp* prog) {
    if (prog->programSize == 0) return nullptr;
    const auto* block = reinterpret_cast<const char*>(prog);
    const auto* guide = reinterpret_cast<const Guide*>(block + guideOffset(prog->programSize));
    const bool unchanged = guide->regstart == prog->regstart && guide->regmust == prog->regmust &&
                           guide->regmlen == prog->regmlen &&
                           std::memcmp(guide->programCopy, prog->program, prog->programSize) == 0;
    return unchanged ? guide : nullptr;
}

} // namespace qzReg
