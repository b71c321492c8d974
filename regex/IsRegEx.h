// qzIsRegEx: whether a string has to be searched for as a regular expression.
#ifndef QZ_REGEX_ISREGEX_H
#define QZ_REGEX_ISREGEX_H

#include "util/Export.h"

// The characters that make a string a regular expression.
//
// Deliberate: { and } count though the engine takes them literally, and ?, |
// and backslash do not count though it does not. Callers rely on it: "why?" and
// "a|b" from a user are searched for as they stand. Pinned by
// qzIsRegEx.KnowsItsCharactersAndNoOthers.
extern QZ_EXPORT const char* const regexpchars;

// Whether s contains one of them.
QZ_EXPORT bool qzIsRegEx(const char* s);

#endif
