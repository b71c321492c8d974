// qzSLinearPattern: a literal text as a pattern.
//
// Deliberate: an empty pattern is found at 0, in the empty text too, and ends
// there; callers that search for what a user left blank stay where they are.
// Pinned by qzSLinearPattern.EmptyPatternIsFoundAtTheBeginning.
//
// Units: bytes; a NUL is a byte like any other, in the pattern and in the text.
// Ownership: the pattern is copied.
// Cost: proportional to the text, about 50 ns for 1,000 bytes, or some times that
//     when both are repetitive; 1 kB for the table.
// Searches change nothing: any number may go on in one object.
#ifndef QZ_REGEX_SLINEARPATTERN_H
#define QZ_REGEX_SLINEARPATTERN_H

#include "regex/TextPattern.h"

class qzStr;

class QZ_EXPORT qzSLinearPattern : public qzTextPattern {
  public:
    // A length of 0 means strlen(pattern).
    explicit qzSLinearPattern(const char* pattern, unsigned length = 0);
    explicit qzSLinearPattern(const qzStr& pattern);
    qzSLinearPattern(const qzSLinearPattern&) = delete;
    qzSLinearPattern& operator=(const qzSLinearPattern&) = delete;

    // slots 1-4; the last two go by what findBuffer() says, whoever overrides it
    ~qzSLinearPattern() override;
    int findBuffer(const char* text, unsigned length) const override;
    unsigned findEndBuffer(const char* text, unsigned length) const override;
    void bracketBuffer(const char* text, unsigned length, int& start, int& end) const override;

  protected:
    int skip[256]; // by byte as an unsigned value: how far a search whose last byte meets it
                   // may advance; for the searches of derived classes
    char* pattern; // patternLength bytes, not terminated
    unsigned patternLength;

  private:
    void constructor(const char* text, unsigned length);
};

static_assert(sizeof(void*) != 4 || sizeof(qzSLinearPattern) == 1040, "callers embed patterns");

#endif
