// NaiveMatcher: matches a compiled program in the most obvious way, for tests.
//
// Tries everything in order and remembers nothing; not even the opcodes are the
// library's. Exponential: it gives up after a number of steps.
#ifndef QZ_TESTS_REGEX_NAIVEMATCHER_H
#define QZ_TESTS_REGEX_NAIVEMATCHER_H

#include "regex/RegExp.h"

#include <cctype>
#include <cstring>

class NaiveMatcher {
  public:
    // Whether the library finds what this one finds, as compiled and by the
    // program bytes alone; or this one gives up.
    static bool agrees(qzregexp* prog, const char* string, unsigned long maxSteps) {
        NaiveMatcher naive(string, maxSteps);
        const bool expected = naive.match(prog->program + 1);
        if (naive.stepsLeft == 0) return true;
        const unsigned short sizes[] = {0, prog->programSize}; // without its size, by the bytes
        for (const unsigned short size : sizes) {
            prog->programSize = size;
            if (qzregexec(prog, string) != expected) return false;
            // A block begins with its bounds.
            if (expected && std::memcmp(prog, naive.bounds, sizeof bounds) != 0) return false;
        }
        return true;
    }

  private:
    enum { END, BOL, EOL, ANY, ANYOF, ANYBUT, BRANCH, BACK, EXACTLY, NOTHING, STAR, PLUS };
    enum { WORDA = 12, WORDZ, OPEN = 20 };

    NaiveMatcher(const char* string, unsigned long maxSteps) : stepsLeft(maxSteps), begin(string) {}

    bool match(const char* program) {
        const char*& start = bounds[0];
        for (start = input = begin; !run(program); input = ++start)
            if (*start == '\0') return false;
        bounds[10] = input;
        return true;
    }

    static bool word(char c) { return c == '_' || std::isalnum(static_cast<signed char>(c)); }

    // Where the node's text ends; null when it does not match.
    const char* take(const char* node, const char* at) const {
        const int op = *node;
        if (op == BOL) return at == begin ? at : nullptr;
        if (op == EOL) return *at == '\0' ? at : nullptr;
        if (op == WORDA) return word(*at) && (at == begin || !word(at[-1])) ? at : nullptr;
        if (op == WORDZ) return word(*at) ? nullptr : at;
        if (op == BACK || op == NOTHING || op > OPEN) return at;
        const std::size_t length = std::strlen(node + 3);
        if (op == EXACTLY) return std::strncmp(at, node + 3, length) == 0 ? at + length : nullptr;
        if (*at == '\0') return nullptr;
        return op == ANY || !std::strchr(node + 3, *at) == (op == ANYBUT) ? at + 1 : nullptr;
    }

    bool run(const char* node) {
        if (stepsLeft == 0 || --stepsLeft == 0) return false;
        const char* const saved = input;
        const int distance = (node[1] & 255) * 256 + (node[2] & 255);
        const char* const after = *node == BACK ? node - distance : node + distance;
        if (*node == END) return true;
        if (*node == BRANCH) {
            if (run(node + 3)) return true;
            input = saved;
            return *after == BRANCH && run(after);
        }
        if (*node == STAR || *node == PLUS) {
            while (const char* more = take(node + 3, input))
                input = more;
            for (const char* at = input; at >= saved + (*node == PLUS); --at) {
                input = at;
                if (run(after)) return true;
            }
            return false;
        }
        input = take(node, saved);
        if (!input || !run(after)) return false;
        // A group's bound stays as the rest of the match has set it.
        if (*node > OPEN && !bounds[*node - OPEN]) bounds[*node - OPEN] = saved;
        return true;
    }

    unsigned long stepsLeft;
    const char* const begin;
    const char* input = nullptr;
    const char* bounds[20] = {}; // starts, then ends
};

#endif
