// qzregcomp, qzregexec, qzregsub: regular expressions over NUL-terminated text.
//
// qzregcomp turns a pattern into one block, qzregexec finds the leftmost match
// of a block in a string and notes what its groups matched, qzregsub expands a
// template from the last match. docs/regex-syntax.md lists the constructs.
//
// Units: text is NUL-terminated and of any length; positions are pointers into
// the string that was searched and live as long as it does.
// Ownership: a block comes from malloc; release it with free.
// Errors: a null block, or 0 for "no match". Nothing says why: see qzregerror.
// Cost: time is at most proportional to program size times text length, and
// ordinary patterns take far less. A match with choices left open keeps them in
// heap memory (docs/regex-syntax.md says what that can come to); the stack use is
// constant.
// Not re-entrant: calls of these functions must not overlap, not even on
// different blocks.
#ifndef QZ_REGEX_REGEXP_H
#define QZ_REGEX_REGEXP_H

#include "util/Export.h"

struct qzregexp {
    const char* startp[10];     // of the whole match (0) and of groups 1 to 9; null when unset
    const char* endp[10];       // one past the last character of the same
    char regstart;              // the character every match begins with, or 0
    char reganch;               // non-zero: the pattern begins with ^
    unsigned short programSize; // the engine's own, where there would be padding
    const char* regmust;        // a literal in the program that every match contains, or null
    int regmlen;                // its length
    char program[1];            // really programSize bytes, and the engine's own data behind them
};

static_assert(sizeof(void*) != 4 || sizeof(qzregexp) == 96, "callers read the fields of a block");

// A new block, or null when the pattern is null, malformed or too big (its
// program would take 32767 bytes or more).
QZ_EXPORT qzregexp* qzregcomp(const char* pattern);

// 1 when the string contains a match, with its bounds in startp and endp;
// 0 when there is none or an argument is null or damaged.
QZ_EXPORT int qzregexec(qzregexp* prog, const char* string);

// Writes the template `source` to dest with & replaced by the last match and \0
// to \9 by its groups (by nothing when unset); \& and \\ stand for & and \. The
// caller sizes dest. The string last searched must still be there.
QZ_EXPORT void qzregsub(const qzregexp* prog, const char* source, char* dest);

// Is told the reason of every failure and keeps it to itself. A program that
// defines a function of this name does not get the library's calls.
QZ_EXPORT void qzregerror(const char* message);

#endif
