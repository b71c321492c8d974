// qzTextPattern: something that can be searched for in a text.
//
// qzRegEx searches for a regular expression, qzSLinearPattern for a literal;
// qzIsRegEx() tells which of the two a string from a user asks for.
//
// Units: bytes; indices count from the beginning of the text, and an end is one
//     past the last byte of the match.
#ifndef QZ_REGEX_TEXTPATTERN_H
#define QZ_REGEX_TEXTPATTERN_H

#include "util/RCObj.h"

class QZ_EXPORT qzTextPattern : public qzRCObj {
  public:
    ~qzTextPattern() override;

    // Start of the first match; -1 when there is none, -2 when the pattern is
    // unusable.
    virtual int findBuffer(const char* text, unsigned length) const = 0;
    // End of the first match; 0 when there is none. An empty match at the
    // beginning ends at 0, too.
    virtual unsigned findEndBuffer(const char* text, unsigned length) const = 0;
    // Both at once.
    virtual void bracketBuffer(const char* text, unsigned length, int& start, int& end) const = 0;
};

#endif
