#include "regex/SLinearPattern.h"

#include <cassert>
#include <cstring>
#include <new>

#include "regex/detail/LiteralSearch.h"
#include "util/Str.h"
#include "util/detail/RawMemory.h"

namespace {

unsigned char index(char c) { return static_cast<unsigned char>(c); }

} // namespace

qzSLinearPattern::qzSLinearPattern(const char* pattern, unsigned length) {
    assert(pattern);
    constructor(pattern, length ? length : static_cast<unsigned>(std::strlen(pattern)));
}

qzSLinearPattern::qzSLinearPattern(const qzStr& pattern) {
    constructor(pattern.c_str(), pattern.length());
}

qzSLinearPattern::~qzSLinearPattern() { delete[] pattern; }

void qzSLinearPattern::constructor(const char* text, unsigned length) {
    patternLength = length;
    pattern = new (std::nothrow) char[length];
    if (!pattern) qzRawExhausted();
    qzRawMove(pattern, text, length);
    for (int& distance : skip)
        distance = static_cast<int>(length);
    for (unsigned i = 0; i + 1 < length; ++i)
        skip[index(pattern[i])] = static_cast<int>(length - 1 - i);
}

int qzSLinearPattern::findBuffer(const char* text, unsigned length) const {
    if (patternLength == 0) return 0;
    const qzReg::Literal literal{pattern, patternLength, patternLength - 1, 0};
    const char* const found = qzReg::findInBytes(text, length, literal);
    return found ? static_cast<int>(found - text) : -1;
}

unsigned qzSLinearPattern::findEndBuffer(const char* text, unsigned length) const {
    const int start = findBuffer(text, length);
    return start < 0 ? 0 : static_cast<unsigned>(start) + patternLength;
}

void qzSLinearPattern::bracketBuffer(const char* text, unsigned length, int& start,
                                     int& end) const {
    start = findBuffer(text, length);
    end = start < 0 ? 0 : start + static_cast<int>(patternLength);
}
