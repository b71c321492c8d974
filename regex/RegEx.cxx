#include "regex/RegEx.h"

#include "regex/RegExp.h"
#include "util/Str.h"
#include "util/detail/RawMemory.h"

qzRegEx::qzRegEx(const char* pattern) : program(qzregcomp(pattern)) {}

qzRegEx::qzRegEx(const qzStr& pattern) : qzRegEx(pattern.c_str()) {}

qzRegEx::~qzRegEx() { qzRawFree(program); }

int qzRegEx::findBuffer(const char* text, unsigned length) const {
    int start, end;
    qzRegEx::bracketBuffer(text, length, start, end);
    return start;
}

unsigned qzRegEx::findEndBuffer(const char* text, unsigned length) const {
    int start, end;
    qzRegEx::bracketBuffer(text, length, start, end);
    return static_cast<unsigned>(end);
}

void qzRegEx::bracketBuffer(const char* text, unsigned, int& start, int& end) const {
    start = program ? -1 : -2;
    end = 0;
    if (!program || !qzregexec(program, text) || !program->startp[0]) return;
    start = static_cast<int>(program->startp[0] - text);
    end = static_cast<int>(program->endp[0] - text);
}
