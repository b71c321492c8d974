// The matcher: depth-first search through the program, with its own stack.
//
// Matching goes forward from node to node and, where there are several ways to
// go on, notes the others on a stack (detail/BacktrackStack.h) to come back to
// when a node fails: an alternative not yet tried, or the shorter lengths of a
// STAR or PLUS run, all in one record. Three things keep that stack small: a
// way that the next character rules out is not noted (the guide knows, see
// detail/Guide.h), the last way left is not, and a group's bounds are noted only
// before their first change after the last choice.
//
// Bounds of groups are set going forward and taken back when the match comes
// back past them, so that each group ends up with its last bounds on the way
// that succeeded.
//
// Nothing that lies ahead of a position depends on how the match came there:
// bounds are never read while matching. So a choice that has failed at a
// position fails there always, also for matches begun elsewhere in the same
// string. Once a search has done four times as many steps as the string is
// long, it marks each choice and position that it enters (detail/FailureTable.h)
// and never enters it again. Marking on entry is as good as on failure: the
// only way back to a pair still being tried would be around a loop without
// consuming a character, and loop bodies always consume one. For a run, the
// marks are on the positions to go on from; as a run ends where its characters
// end, wherever it began, a marked position has only marked ones after it. Ends
// of groups are marked like choices: what follows them is the same for every
// alternative that leads there.
//
// Cost: program times text at most, in steps; usually a step per character.
// Covered by qzregexec.AgreesWithNaiveMatcher*, qzregexec.HostilePatterns*.
#include "regex/RegExp.h"

#include "regex/detail/BacktrackStack.h"
#include "regex/detail/FailureTable.h"
#include "regex/detail/Guide.h"
#include "regex/detail/Program.h"

#include <cctype>
#include <cstdint>
#include <cstring>

using namespace qzReg;

namespace {

const char* reginput;   // the match position
const char* regbol;     // the beginning of the string
const char** regstartp; // the arrays of the program being matched
const char** regendp;

// By the current locale. The character is looked up as a signed byte, for which
// the C library's tables have room; byte 255 is the end-of-file mark to them and
// never in a word.
bool isWord(char c) { return c == '_' || std::isalnum(static_cast<signed char>(c)); }

bool startsWith(const char* string, const char* literal) {
    while (*literal != '\0' && *string == *literal)
        ++string, ++literal;
    return *literal == '\0';
}

// The first position at or after `from` where a match could begin, or null.
const char* nextStart(const qzregexp* prog, const Guide* guide, const char* from) {
    if (!guide) return prog->regstart ? std::strchr(from, prog->regstart) : from;
    if (guide->lead.length > 1) return findInString(from, guide->lead);
    if (guide->onlyStart) return std::strchr(from, guide->onlyStart);
    while (!guide->stops[static_cast<unsigned char>(*from)])
        ++from;
    return *from != '\0' || guide->first(prog->program + 1).has('\0') ? from : nullptr;
}

class Search {
  public:
    Search(const qzregexp* prog, const Guide* guide) : program(prog->program), guide(guide) {}

    const char* startAfterFailure(const char* start) const;
    bool regtry(qzregexp* prog, const char* start);

  private:
    bool regmatch(const char* node);
    bool goForward(const char* node, const char*& input);
    bool goBack(const char*& node, const char*& input);

    const char* choose(const char* branch, const char* input);
    bool enterRun(const char* node, const char*& input);
    bool leaveRun(const char* node, const char* lowest, const char* position, const char*& input);
    const char* lastBeginning(const char* node, const char* lowest, const char* position) const;
    bool setBound(const char* node, const char* input);

    bool canBegin(const char* node, char c) const;
    const char* regrepeat(const char* node, const char* input) const;

    bool firstVisit(const char* choice, const char* input);
    const char* firstVisitOfRun(const char* node, const char* input);
    void countSteps(std::size_t steps) {
        stepsTaken += steps;
        if (stepsTaken >= nextCheck) considerTable();
    }
    void considerTable();
    template <class... Words> bool note(Words... words);

    const char* program;
    const Guide* guide; // or null: go by the bytes

    BacktrackStack stack;
    unsigned noted = 0;      // bit per OPEN and CLOSE: noted since the last choice
    bool boundsSet = false;  // some were set in this try
    bool outOfSpace = false; // the stack could not grow: give up

    FailureTable table;
    std::uint64_t stepsTaken = 0; // counted when a node fails
    std::uint64_t nextCheck = 256;
};

void clearBounds() {
    for (unsigned n = 0; n <= maxGroup; ++n)
        regstartp[n] = regendp[n] = nullptr;
}

// Where to look on when there is no match at `start`, or null at the end of the
// string. When every match begins with a run, the positions later in the same
// run cannot do better than its beginning.
const char* Search::startAfterFailure(const char* start) const {
    if (outOfSpace) return nullptr;
    if (guide && guide->leadRun) start = regrepeat(operand(guide->leadRun), start);
    return *start == '\0' ? nullptr : start + 1;
}

bool Search::regtry(qzregexp* prog, const char* start) {
    reginput = start;
    if (!regmatch(program + 1)) {
        if (boundsSet) clearBounds();
        boundsSet = false;
        return false;
    }
    prog->startp[0] = start;
    prog->endp[0] = reginput;
    return true;
}

bool Search::regmatch(const char* node) {
    const char* input = reginput;
    const char* resumedAt = input;
    while (!goForward(node, input)) {
        countSteps(static_cast<std::size_t>(input - resumedAt) + 1);
        if (!goBack(node, input)) return false;
        resumedAt = input;
    }
    reginput = input;
    return true;
}

// From the node until a node fails (false) or the program ends (true).
inline bool Search::goForward(const char* node, const char*& input) {
    for (;;) {
        if (!node) {
            qzregerror("corrupted pointers");
            return false;
        }
        const char* next = regnext(node);
        switch (const unsigned char op = opcode(node)) {
        case END:
            return true;
        case BOL:
            if (input != regbol) return false;
            break;
        case EOL:
            if (*input != '\0') return false;
            break;
        case ANY:
            if (*input == '\0') return false;
            ++input;
            break;
        case ANYOF:
        case ANYBUT:
            if (*input == '\0' || !canBegin(node, *input)) return false;
            ++input;
            break;
        case EXACTLY: {
            const char* literal = operand(node);
            const char* at = input;
            while (*literal != '\0' && *at == *literal)
                ++at, ++literal;
            if (*literal != '\0') return false;
            input = at;
            break;
        }
        case NOTHING:
        case BACK:
            break;
        case WORDA:
            if (!isWord(*input) || (input != regbol && isWord(input[-1]))) return false;
            break;
        case WORDZ:
            // Deliberate: the character before is not looked at; callers get a
            // match at the end of every string and before every character that
            // is not of a word. Pinned by qzregexec.WordEndIgnoresCharacterBefore.
            if (isWord(*input)) return false;
            break;
        case BRANCH:
            if (!next || opcode(next) != BRANCH) {
                next = operand(node);
            } else {
                if (table.isOpen() && !firstVisit(node, input)) return false;
                next = choose(node, input);
                if (!next) return false;
            }
            break;
        case STAR:
        case PLUS:
            if (!enterRun(node, input)) return false;
            break;
        default:
            if (op <= OPEN || op == CLOSE || op > CLOSE + maxGroup) {
                qzregerror("memory corruption");
                return false;
            }
            // Alternatives meet at a group's end: what follows is tried once for
            // all of them.
            if (op > CLOSE && table.isOpen() && !firstVisit(node, input)) return false;
            if (!setBound(node, input)) return false;
        }
        node = next;
    }
}

// Notes something on the stack. The table only saves time: it gives way.
template <class... Words> bool Search::note(Words... words) {
    if (stack.push(words...)) return true;
    if (table.isOpen()) {
        table.close();
        nextCheck = UINT64_MAX; // and is not opened again
        if (stack.push(words...)) return true;
    }
    qzregerror("out of space");
    outOfSpace = true;
    return false;
}

// To the last choice with a way left; false when there is none.
inline bool Search::goBack(const char*& node, const char*& input) {
    while (!outOfSpace && !stack.empty()) {
        const char* const noteOf = stack.popNode();
        const unsigned char op = opcode(noteOf);
        if (op > CLOSE) {
            regendp[op - CLOSE] = stack.popWord();
        } else if (op > OPEN) {
            regstartp[op - OPEN] = stack.popWord();
        } else if (op == BRANCH) {
            noted = 0;
            input = stack.popWord();
            node = choose(noteOf, input);
            return node != nullptr;
        } else {
            noted = 0;
            const char* const position = stack.popWord();
            const char* const lowest = stack.popWord();
            node = regnext(noteOf);
            if (leaveRun(noteOf, lowest, position, input)) return true;
        }
    }
    return false;
}

// The operand of the first alternative, from `branch` on, that the input may go
// on with, or null. Notes the next such alternative.
inline const char* Search::choose(const char* branch, const char* input) {
    const char c = *input;
    while (!canBegin(operand(branch), c)) {
        branch = nextBranch(branch);
        if (!branch) return nullptr;
    }
    for (const char* other = nextBranch(branch); other; other = nextBranch(other)) {
        if (!canBegin(operand(other), c)) continue;
        noted = 0;
        if (note(input, other)) break;
        return nullptr;
    }
    return operand(branch);
}

// Consumes the longest run of a STAR or PLUS that something can come after.
inline bool Search::enterRun(const char* node, const char*& input) {
    const char* lowest = input;
    if (opcode(node) == PLUS) ++lowest;
    const char* const end =
        table.isOpen() ? firstVisitOfRun(node, input) : regrepeat(operand(node), input);
    if (!end || end < lowest) return false;
    input = end;
    if (guide && guide->wholeRun(node)) return canBegin(regnext(node), *end);
    return leaveRun(node, lowest, end, input);
}

// Puts the input at the last position from `position` down to `lowest` that
// what comes after the run can begin at, and notes the positions below.
inline bool Search::leaveRun(const char* node, const char* lowest, const char* position,
                             const char*& input) {
    position = lastBeginning(regnext(node), lowest, position);
    if (!position) return false;
    input = position;
    if (position > lowest) {
        if (!note(lowest, position - 1, node)) return false;
        noted = 0;
    }
    return true;
}

// The last position from `position` down to `lowest` that the node can begin at,
// with all of its text if it is a literal; or null.
inline const char* Search::lastBeginning(const char* node, const char* lowest,
                                         const char* position) const {
    if (node && opcode(node) == EXACTLY) {
        const char* const literal = operand(node);
        const char first = *literal;
        while (*position != first || !startsWith(position, literal)) {
            if (position == lowest) return nullptr;
            --position;
        }
        return position;
    }
    while (!canBegin(node, *position)) {
        if (position == lowest) return nullptr;
        --position;
    }
    return position;
}

inline bool Search::setBound(const char* node, const char* input) {
    const unsigned char op = opcode(node);
    const char*& bound = op > CLOSE ? regendp[op - CLOSE] : regstartp[op - OPEN];
    const unsigned bit = 1u << (op - OPEN);
    if (!(noted & bit) && !stack.empty()) {
        if (!note(bound, node)) return false;
        noted |= bit;
    }
    bound = input;
    boundsSet = true;
    return true;
}

// Whether the node can match text that goes on with c. Without a guide only
// what is cheap to tell is told; a missing node is left to be reported.
inline bool Search::canBegin(const char* node, char c) const {
    if (guide) return guide->first(node).has(c);
    if (!node) return true;
    switch (opcode(node)) {
    case EXACTLY:
        return c == *operand(node);
    case ANYOF:
        return c != '\0' && std::strchr(operand(node), c);
    case ANYBUT:
        return c != '\0' && !std::strchr(operand(node), c);
    default:
        return true;
    }
}

// The end of the longest run of a simple node's characters.
const char* Search::regrepeat(const char* node, const char* input) const {
    switch (opcode(node)) {
    case ANY:
        return input + std::strlen(input);
    case EXACTLY:
        while (*input != '\0' && *input == *operand(node))
            ++input;
        return input;
    case ANYOF:
    case ANYBUT:
        while (canBegin(node, *input))
            ++input;
        return input;
    default:
        qzregerror("internal foulup");
        return input;
    }
}

// Marks the choice as tried at this position; false when it was before.
bool Search::firstVisit(const char* choice, const char* input) {
    const auto position = static_cast<std::size_t>(input - regbol);
    const unsigned number = guide->choice(choice);
    if (table.visited(number, position)) return false;
    table.visit(number, position);
    return true;
}

// Marks the positions that a run can be left at, up to the first that has been
// tried before, and returns the last marked; null when there is none.
const char* Search::firstVisitOfRun(const char* node, const char* input) {
    const CharSet& members = guide->first(operand(node));
    if (opcode(node) == PLUS && !members.has(*input++)) return nullptr;
    if (!firstVisit(node, input)) return nullptr;
    while (members.has(*input) && firstVisit(node, input + 1))
        ++input;
    return input;
}

void Search::considerTable() {
    const std::uint64_t stepsPerCharacter = 4;
    nextCheck = stepsTaken * 2;
    if (!guide || table.isOpen()) return;
    const std::uint64_t affordable = stepsTaken / stepsPerCharacter;
    const std::uint64_t most = static_cast<std::size_t>(-1) / 2;
    const auto reach = static_cast<std::size_t>(affordable < most ? affordable : most);
    const std::size_t length = strnlen(regbol, reach);
    if (length < reach) table.open(guide->choiceCount, length);
}

// The first position to try, or null when there is none.
const char* firstStart(const qzregexp* prog, const Guide* guide, const char* string) {
    if (prog->reganch) {
        const bool ruledOut =
            guide && guide->lead.length > 1 && !startsWith(string, guide->lead.text);
        return ruledOut ? nullptr : string;
    }
    const char* const start = nextStart(prog, guide, string);
    if (!start || prog->regmust || !guide || !guide->must.text) return start;
    return findInString(start, guide->must) ? start : nullptr;
}

bool boundsAreClear() {
    std::uintptr_t bits = 0;
    for (unsigned n = 0; n <= maxGroup; ++n)
        bits |= reinterpret_cast<std::uintptr_t>(regstartp[n]) |
                reinterpret_cast<std::uintptr_t>(regendp[n]);
    return bits == 0;
}

// Deliberate: a string without regstart or, before, regmust leaves the bounds of
// the match before; callers that look at them after a 0 see the old ones.
// Pinned by qzregexec.BoundsAfterNoMatch.
void clearBoundsWithoutTry(const qzregexp* prog, const char* string) {
    if (boundsAreClear()) return; // before the string is looked at again
    if (prog->reganch || !prog->regstart || std::strchr(string, prog->regstart)) clearBounds();
}

} // namespace

int qzregexec(qzregexp* prog, const char* string) {
    if (!prog || !string) {
        qzregerror("NULL parameter");
        return 0;
    }
    if (opcode(prog->program) != magic) {
        qzregerror("corrupted program");
        return 0;
    }
    const Guide* const guide = guideOf(prog);
    if (prog->regmust) {
        const Literal asGiven{prog->regmust, static_cast<unsigned>(prog->regmlen), 0, 0};
        if (!findInString(string, guide ? guide->must : asGiven)) return 0;
    }
    regbol = string;
    regstartp = prog->startp;
    regendp = prog->endp;
    const char* start = firstStart(prog, guide, string);
    if (!start) {
        clearBoundsWithoutTry(prog, string);
        return 0;
    }
    clearBounds();
    Search search(prog, guide);
    while (!search.regtry(prog, start)) {
        if (prog->reganch) return 0;
        start = search.startAfterFailure(start);
        if (!start || !(start = nextStart(prog, guide, start))) return 0;
    }
    return 1;
}
