// qzRegEx: a regular expression as a text pattern.
//
// docs/regex-syntax.md lists the constructs and what they cost.
//
// Deliberate: the length of a text is ignored; it is searched up to its NUL.
// Callers pass terminated buffers with whatever length they have at hand.
// Pinned by qzRegEx.SearchesUpToTheNulWhateverTheLength.
//
// Ownership: the compiled program is the pattern's own.
// Errors: a malformed pattern shows in isValid() and as the start -2.
// Not re-entrant: searches must not overlap, not even those of two patterns.
#ifndef QZ_REGEX_REGEX_H
#define QZ_REGEX_REGEX_H

#include "regex/TextPattern.h"

class qzStr;
struct qzregexp;

class QZ_EXPORT qzRegEx : public qzTextPattern {
  public:
    explicit qzRegEx(const char* pattern);
    // The text up to its first NUL.
    explicit qzRegEx(const qzStr& pattern);
    qzRegEx(const qzRegEx&) = delete;
    qzRegEx& operator=(const qzRegEx&) = delete;

    // slots 1-4
    ~qzRegEx() override;
    int findBuffer(const char* text, unsigned length) const override;
    unsigned findEndBuffer(const char* text, unsigned length) const override;
    void bracketBuffer(const char* text, unsigned length, int& start, int& end) const override;

    bool isValid() const { return program != nullptr; }

  protected:
    qzregexp* program; // null when the pattern did not compile
};

static_assert(sizeof(void*) != 4 || sizeof(qzRegEx) == 12, "callers embed patterns");

#endif
