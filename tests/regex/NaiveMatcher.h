// NaiveMatcher: matches a compiled program in the most obvious way, for tests.
//
// One recursive function over the program bytes that tries everything in order
// and remembers nothing. It shares no code with the library: opcodes are
// written out. Exponential, and deep in recursion: for short texts only; it
// stops after a number of steps and says so.
#ifndef QZ_TESTS_REGEX_NAIVEMATCHER_H
#define QZ_TESTS_REGEX_NAIVEMATCHER_H

#include "regex/RegExp.h"

#include <cctype>
#include <cstring>

class NaiveMatcher {
  public:
    const char* startp[10];
    const char* endp[10];
    unsigned long stepsLeft;

    // 1 for a match and 0 for none, as long as there are stepsLeft afterwards.
    int match(const qzregexp* prog, const char* string, unsigned long maxSteps = 10000000) {
        stepsLeft = maxSteps;
        begin = string;
        if (prog->regmust && !std::strstr(string, prog->regmust)) return 0;
        for (const char* at = string;; ++at) {
            for (int n = 0; n < 10; ++n)
                startp[n] = endp[n] = nullptr;
            input = at;
            if (run(prog->program + 1)) {
                startp[0] = at;
                endp[0] = input;
                return 1;
            }
            if (*at == '\0' || prog->reganch) return 0;
        }
    }

  private:
    static const char* next(const char* node) {
        const int offset =
            static_cast<unsigned char>(node[1]) * 256 + static_cast<unsigned char>(node[2]);
        if (offset == 0) return nullptr;
        return *node == 7 ? node - offset : node + offset;
    }

    static bool word(char c) { return c == '_' || std::isalnum(static_cast<signed char>(c)); }

    // One character by a node that is one character wide.
    static bool takes(const char* node, char c) {
        if (c == '\0') return false;
        switch (*node) {
        case 3:
            return true;
        case 4:
            return std::strchr(node + 3, c) != nullptr;
        case 5:
            return std::strchr(node + 3, c) == nullptr;
        case 8:
            return c == node[3];
        default:
            return false;
        }
    }

    bool run(const char* node) {
        if (!node || stepsLeft == 0) return false;
        --stepsLeft;
        const char* const saved = input;
        const int op = static_cast<unsigned char>(*node);
        switch (op) {
        case 0:
            return true;
        case 1:
            return input == begin && run(next(node));
        case 2:
            return *input == '\0' && run(next(node));
        case 3:
        case 4:
        case 5:
            if (!takes(node, *input)) return false;
            ++input;
            return run(next(node));
        case 6:
            if (*next(node) != 6) return run(node + 3);
            for (; node && *node == 6; node = next(node)) {
                if (run(node + 3)) return true;
                input = saved;
            }
            return false;
        case 7:
        case 9:
            return run(next(node));
        case 8:
            for (const char* literal = node + 3; *literal; ++literal, ++input) {
                if (*input != *literal) return false;
            }
            return run(next(node));
        case 10:
        case 11: {
            long count = 0;
            while (takes(node + 3, input[count]))
                ++count;
            for (; count >= op - 10; --count) {
                input = saved + count;
                if (run(next(node))) return true;
            }
            return false;
        }
        case 12:
            return word(*input) && !(input != begin && word(input[-1])) && run(next(node));
        case 13:
            return !word(*input) && run(next(node));
        default: {
            // A group's bound stays as the rest of the match has set it.
            if (!run(next(node))) return false;
            const char*& bound = op < 30 ? startp[op - 20] : endp[op - 30];
            if (!bound) bound = saved;
            return true;
        }
        }
    }

    const char* begin = nullptr;
    const char* input = nullptr;
};

#endif
