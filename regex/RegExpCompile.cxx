// The compiler: a recursive-descent parser run twice over the pattern, once to
// count the program's bytes and once to write them. Groups are its only
// recursion and there are nine at most.
#include "regex/RegExp.h"

#include "regex/detail/Guide.h"
#include "regex/detail/Program.h"
#include "util/detail/RawMemory.h"

#include <cassert>
#include <cstring>

using namespace qzReg;

namespace {

// What a parsed item promises to the item around it.
enum Flags : int {
    WORST = 0,
    HASWIDTH = 1, // never matches the empty string
    SIMPLE = 2,   // one character wide: fit for STAR and PLUS
    SPSTART = 4   // starts with * or ?
};

const unsigned tooBig = 32767; // a next pointer spans the whole program

const char* regparse; // what is still to be parsed
int regnpar;          // number of the next group
char regdummy;        // the node that everything is emitted to while sizing
char* regcode;        // where to emit; at regdummy while sizing
unsigned regsize;     // program bytes counted; stops growing once it is too big
unsigned regnodes;    // nodes counted

bool sizing() { return regcode == &regdummy; }

char* regfail(const char* message) {
    qzregerror(message);
    return nullptr;
}

void count(unsigned bytes) {
    if (regsize < tooBig) regsize += bytes;
}

void regc(char c) {
    if (sizing())
        count(1);
    else
        *regcode++ = c;
}

char* regnode(unsigned char op) {
    if (sizing()) {
        count(nodeSize);
        ++regnodes;
        return regcode;
    }
    char* node = regcode;
    *regcode++ = static_cast<char>(op);
    *regcode++ = 0;
    *regcode++ = 0;
    return node;
}

// Puts a node in front of what was emitted last, which moves up.
void reginsert(unsigned char op, char* what) {
    if (sizing()) {
        count(nodeSize);
        ++regnodes;
        return;
    }
    qzRawMove(what + nodeSize, what, static_cast<std::size_t>(regcode - what));
    regcode += nodeSize;
    what[0] = static_cast<char>(op);
    what[1] = what[2] = 0;
}

// Lets the last node of the chain that begins at p go on to val.
void regtail(char* p, const char* val) {
    if (sizing()) return;
    while (const unsigned offset = nextOffset(p))
        p = opcode(p) == BACK ? p - offset : p + offset;
    const auto distance = static_cast<unsigned>(opcode(p) == BACK ? p - val : val - p);
    p[1] = static_cast<char>(distance >> 8);
    p[2] = static_cast<char>(distance & 0xFF);
}

// The same for the operand of an alternative; nothing for any other node.
void regoptail(char* p, const char* val) {
    if (!sizing() && opcode(p) == BRANCH) regtail(operand(p), val);
}

bool isOperator(char c) { return c == '*' || c == '+' || c == '?'; }
// Deliberate: a newline is a |, so that callers can give several patterns, one
// per line. Pinned by qzregexec.NewlineSeparatesAlternatives.
bool isSeparator(char c) { return c == '|' || c == '\n'; }
bool endsBranch(char c) { return c == '\0' || c == ')' || isSeparator(c); }
bool endsLiteral(char c) { return endsBranch(c) || std::strchr("$(.[^", c); }

char* reg(bool group, int& flags);

// "[" has been read.
char* regset() {
    char* const set = regnode(*regparse == '^' ? ANYBUT : ANYOF);
    if (*regparse == '^') ++regparse;
    if (*regparse == ']' || *regparse == '-') regc(*regparse++);
    while (*regparse != '\0' && *regparse != ']') {
        const char c = *regparse++;
        if (c != '-' || *regparse == ']' || *regparse == '\0') {
            regc(c);
            continue;
        }
        // The character before the dash is in the set by now.
        const auto previous = static_cast<unsigned char>(regparse[-2]);
        const auto last = static_cast<unsigned char>(*regparse++);
        if (previous > last) return regfail("invalid [] range");
        if (sizing()) {
            count(static_cast<unsigned>(last - previous)); // at once: 3 bytes may stand for 255
            continue;
        }
        for (unsigned member = previous + 1u; member <= last; ++member)
            regc(static_cast<char>(member));
    }
    regc('\0');
    if (*regparse != ']') return regfail("unmatched []");
    ++regparse;
    return set;
}

// A run of ordinary and escaped characters. An operator takes the last of them
// only: in a longer run that one is left to be an atom of its own.
char* regliteral(int& flags) {
    char* const literal = regnode(EXACTLY);
    std::size_t length = 0;
    for (bool more = true; more;) {
        const char* const current = regparse;
        if (*regparse == '\\') ++regparse;
        const char c = *regparse++;
        if (isOperator(*regparse) && length > 0) {
            regparse = current;
            break;
        }
        regc(c);
        ++length;
        more = !isOperator(*regparse) && !endsLiteral(*regparse) &&
               !(regparse[0] == '\\' && (regparse[1] == '\0' || std::strchr("<>", regparse[1])));
    }
    regc('\0');
    flags |= HASWIDTH;
    if (length == 1) flags |= SIMPLE;
    return literal;
}

char* regatom(int& flags) {
    flags = WORST;
    switch (*regparse) {
    case '^':
        ++regparse;
        return regnode(BOL);
    case '$':
        ++regparse;
        return regnode(EOL);
    case '.':
        ++regparse;
        flags |= HASWIDTH | SIMPLE;
        return regnode(ANY);
    case '[':
        ++regparse;
        flags |= HASWIDTH | SIMPLE;
        return regset();
    case '(': {
        ++regparse;
        int inside = WORST;
        char* const group = reg(true, inside);
        flags |= inside & (HASWIDTH | SPSTART);
        return group;
    }
    case '\0':
    case '|':
    case '\n':
    case ')':
        return regfail("internal urp"); // regbranch() stops before these
    case '*':
    case '+':
    case '?':
        return regfail("?+* follows nothing");
    case '\\':
        if (regparse[1] == '\0') return regfail("trailing \\");
        if (regparse[1] == '<' || regparse[1] == '>') {
            const unsigned char op = regparse[1] == '<' ? WORDA : WORDZ;
            regparse += 2;
            return regnode(op);
        }
        return regliteral(flags);
    default:
        return regliteral(flags);
    }
}

// Each of these builds what detail/Program.h draws.

void starLoop(char* atom) {
    reginsert(BRANCH, atom);
    regoptail(atom, regnode(BACK));
    regoptail(atom, atom);
    regtail(atom, regnode(BRANCH));
    regtail(atom, regnode(NOTHING));
}

void plusLoop(char* atom) {
    char* const again = regnode(BRANCH);
    regtail(atom, again);
    regtail(regnode(BACK), atom);
    regtail(again, regnode(BRANCH));
    regtail(atom, regnode(NOTHING));
}

void optional(char* atom) {
    reginsert(BRANCH, atom);
    regtail(atom, regnode(BRANCH));
    const char* const join = regnode(NOTHING);
    regtail(atom, join);
    regoptail(atom, join);
}

char* regpiece(int& flags) {
    int inside = WORST;
    char* const atom = regatom(inside);
    if (!atom) return nullptr;
    const char op = *regparse;
    if (!isOperator(op)) {
        flags = inside;
        return atom;
    }
    if (!(inside & HASWIDTH) && op != '?') return regfail("*+ operand could be empty");
    flags = op == '+' ? HASWIDTH : SPSTART;
    if (op == '?')
        optional(atom);
    else if (inside & SIMPLE)
        reginsert(op == '*' ? STAR : PLUS, atom);
    else if (op == '*')
        starLoop(atom);
    else
        plusLoop(atom);
    ++regparse;
    if (isOperator(*regparse)) return regfail("nested *?+");
    return atom;
}

char* regbranch(int& flags) {
    flags = WORST;
    char* const branch = regnode(BRANCH);
    char* last = nullptr;
    while (!endsBranch(*regparse)) {
        int inside = WORST;
        char* const piece = regpiece(inside);
        if (!piece) return nullptr;
        flags |= inside & HASWIDTH;
        if (last)
            regtail(last, piece);
        else
            flags |= inside & SPSTART;
        last = piece;
    }
    if (!last) regnode(NOTHING);
    return branch;
}

// A whole pattern, or a group whose "(" has been read.
char* reg(bool group, int& flags) {
    flags = HASWIDTH;
    char* first = nullptr;
    unsigned char closing = END;
    if (group) {
        if (regnpar > static_cast<int>(maxGroup)) return regfail("too many ()");
        closing = static_cast<unsigned char>(CLOSE + regnpar);
        first = regnode(static_cast<unsigned char>(OPEN + regnpar++));
    }
    for (bool more = true; more;) {
        int inside = WORST;
        char* const branch = regbranch(inside);
        if (!branch) return nullptr;
        if (first)
            regtail(first, branch);
        else
            first = branch;
        if (!(inside & HASWIDTH)) flags &= ~HASWIDTH;
        flags |= inside & SPSTART;
        more = isSeparator(*regparse);
        if (more) ++regparse;
    }
    const char* const ender = regnode(closing);
    regtail(first, ender);
    if (!sizing()) {
        for (char* node = first; node != ender; node += nextOffset(node))
            regoptail(node, ender);
    }
    if (group) {
        if (*regparse != ')') return regfail("unmatched ()");
        ++regparse;
    } else if (*regparse != '\0') {
        return regfail(*regparse == ')' ? "unmatched ()" : "junk on end");
    }
    return first;
}

char* parse(const char* pattern, char* target, int& flags) {
    regparse = pattern;
    regnpar = 1;
    regcode = target;
    regc(static_cast<char>(magic));
    return reg(false, flags);
}

// Deliberate: only patterns that start with * or ? get a regmust, among them
// a?bc; callers see which strings are turned down before any match is tried, as
// these keep the pointers of the match before.
// Pinned by qzregexp.HeaderDescribesThePattern.
void findShortcuts(qzregexp* prog, int flags) {
    prog->regstart = 0;
    prog->reganch = 0;
    prog->regmust = nullptr;
    prog->regmlen = 0;
    const char* node = prog->program + 1;
    if (opcode(regnext(node)) != END) return;
    node = operand(node);
    if (opcode(node) == EXACTLY) prog->regstart = *operand(node);
    if (opcode(node) == BOL) prog->reganch = 1;
    if (!(flags & SPSTART)) return;
    for (; node; node = regnext(node)) {
        if (opcode(node) != EXACTLY) continue;
        const int length = static_cast<int>(std::strlen(operand(node)));
        if (length < prog->regmlen) continue;
        prog->regmust = operand(node);
        prog->regmlen = length;
    }
}

} // namespace

qzregexp* qzregcomp(const char* pattern) {
    if (!pattern) {
        qzregerror("NULL argument");
        return nullptr;
    }
    int flags = WORST;
    regsize = 0;
    regnodes = 0;
    if (!parse(pattern, &regdummy, flags)) return nullptr;
    if (regsize >= tooBig) {
        qzregerror("regexp too big");
        return nullptr;
    }
    auto* prog = static_cast<qzregexp*>(qzRawTryAlloc(guidedBlockSize(regsize, regnodes)));
    if (!prog) {
        qzregerror("out of space");
        return nullptr;
    }
    qzRawZero(prog, sizeof *prog);
    prog->programSize = static_cast<unsigned short>(regsize);
    [[maybe_unused]] const char* first = parse(pattern, prog->program, flags);
    assert(first && regcode == prog->program + regsize); // the sizing pass saw the same pattern
    findShortcuts(prog, flags);
    buildGuide(prog, regnodes);
    return prog;
}
