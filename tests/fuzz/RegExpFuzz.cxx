// Fuzzes the regular-expression engine. Input: pattern, NUL, subject, NUL,
// template. Any input may fail to compile or match; none may crash, hang or
// differ from the naive matcher where that one can afford an answer.
#include "regex/RegExp.h"
#include "tests/regex/NaiveMatcher.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

// The text up to the next NUL, which is skipped.
std::string takeText(const char*& from, const char* end) {
    const char* const nul = std::find(from, end, '\0');
    std::string text(from, nul);
    from = nul == end ? end : nul + 1;
    return text;
}

void require(bool holds) {
    if (!holds) std::abort();
}

void requireSaneBounds(const qzregexp& program, const std::string& subject) {
    const char* const begin = subject.c_str();
    const char* const end = begin + subject.size();
    for (int n = 0; n < 10; ++n) {
        if (!program.startp[n] || !program.endp[n]) continue;
        require(begin <= program.startp[n] && program.startp[n] <= program.endp[n] &&
                program.endp[n] <= end);
    }
}

void requireSameAsNaive(qzregexp* program, const std::string& subject, int found) {
    const std::size_t longest = 500; // it recurses for every character
    if (subject.size() > longest) return;
    NaiveMatcher naive;
    const int expected = naive.match(program, subject.c_str(), 20000);
    if (naive.stepsLeft == 0) return;
    const auto same = [&] {
        return found == expected &&
               (!expected || (std::equal(naive.startp, naive.startp + 10, program->startp) &&
                              std::equal(naive.endp, naive.endp + 10, program->endp)));
    };
    require(same());
    program->programSize = 0; // go by the program bytes alone
    found = qzregexec(program, subject.c_str());
    require(same());
}

void expand(const qzregexp& program, const std::string& subject, const std::string& source) {
    const std::size_t largest = 1 << 20;
    const std::size_t size = source.size() * (subject.size() + 1) + 1;
    if (size > largest) return;
    std::vector<char> dest(size);
    qzregsub(&program, source.c_str(), dest.data());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const char* at = reinterpret_cast<const char*>(data);
    const char* const end = at + size;
    const std::string pattern = takeText(at, end);
    const std::string subject = takeText(at, end);
    const std::string source(at, std::find(at, end, '\0'));

    qzregexp* const program = qzregcomp(pattern.c_str());
    if (!program) return 0;
    const int found = qzregexec(program, subject.c_str());
    if (found) {
        require(program->startp[0] && program->endp[0]);
        requireSaneBounds(*program, subject);
        expand(*program, subject, source);
    }
    requireSameAsNaive(program, subject, found);
    std::free(program);
    return 0;
}
