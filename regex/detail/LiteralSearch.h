// LiteralSearch: the first occurrence of a literal, in bytes or in a string.
//
// Cost: linear; sixteen places are ruled out at once, as long as two characters
// of the literal are not often that far apart in the text.
#ifndef QZ_REGEX_DETAIL_LITERALSEARCH_H
#define QZ_REGEX_DETAIL_LITERALSEARCH_H

#include <cstddef>

namespace qzReg {

// Bytes, at least one, and the indexes of the two of them to look for; the rarer
// they are in the text, the better.
struct Literal {
    const char* text;
    unsigned length;
    unsigned rarest;
    unsigned companion;
};

// Null when there is none.
const char* findInBytes(const char* bytes, std::size_t size, const Literal& literal);
// The same in NUL-terminated text, of which little more is looked at than what
// is before the end of the occurrence.
const char* findInString(const char* string, const Literal& literal);

} // namespace qzReg

#endif
