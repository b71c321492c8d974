#include "tools/qzwatch/LinePattern.h"

#include "regex/RegExp.h"

namespace qzwatch {

namespace {

// Copies n characters.
void copy(const char*& from, unsigned n, qzStr& to) {
    to.append(from, n);
    from += n;
}

// Copies a set; one that takes all but some characters does not take a newline,
// which goes behind its first member, as a place that means nothing special.
void copySet(const char*& from, qzStr& to) {
    const bool negated = from[1] == '^';
    copy(from, negated ? 2 : 1, to);
    const bool range = from[1] == '-' && from[2] != ']';
    copy(from, range ? 3 : 1, to);
    if (negated) to.append('\n');
    while (*from != ']')
        copy(from, 1, to);
}

// The same within a line, of a well-formed pattern.
qzStr withinLine(const char* pattern) {
    qzStr result;
    while (*pattern) {
        if (*pattern == '.') {
            result.append("[^\n]");
            ++pattern;
        } else if (*pattern == '[') {
            copySet(pattern, result);
        } else {
            copy(pattern, *pattern == '\\' ? 2 : 1, result);
        }
    }
    return result;
}

// Also of a pattern that could name a newline, alone or within a range.
bool hasAnchors(const char* pattern) {
    for (const char* p = pattern; *p; ++p) {
        const bool negation = *p == '^' && p > pattern && p[-1] == '[';
        if (*p == '$' || (*p == '^' && !negation)) return true;
        if (static_cast<unsigned char>(*p) <= '\n') return true;
    }
    return false;
}

} // namespace

LinePattern::LinePattern(const char* pattern)
    : qzRegEx(qzRegEx(pattern).isValid() ? withinLine(pattern) : qzStr(pattern)),
      linesAlone(hasAnchors(pattern)) {}

LinePattern::~LinePattern() = default;

void LinePattern::appendKey(qzStr& keys) const {
    const char* const start = program->startp[1];
    if (!start) return;
    const auto length = static_cast<unsigned>(program->endp[1] - start);
    if (length > 0) keys.append(start, length);
    keys.append('\0');
}

} // namespace qzwatch
