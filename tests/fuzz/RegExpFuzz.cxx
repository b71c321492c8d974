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

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const char* at = reinterpret_cast<const char*>(data);
    const char* const end = at + size;
    const std::string pattern = takeText(at, end);
    const std::string subject = takeText(at, end);
    const std::string source = takeText(at, end);

    qzregexp* const program = qzregcomp(pattern.c_str());
    if (!program) return 0;
    if (qzregexec(program, subject.c_str())) {
        require(program->startp[0] && program->endp[0]);
        const char* const begin = subject.c_str();
        for (int n = 0; n < 10; ++n) {
            const char *const start = program->startp[n], *const stop = program->endp[n];
            if (!start || !stop) continue;
            require(begin <= start && start <= stop && stop <= begin + subject.size());
        }
        const std::size_t largest = 1 << 20;
        std::vector<char> dest(source.size() * (subject.size() + 1) + 1);
        if (dest.size() <= largest) qzregsub(program, source.c_str(), dest.data());
    }
    const std::size_t longest = 500; // the naive matcher recurses for every character
    if (subject.size() <= longest)
        require(NaiveMatcher::agrees(program, subject.c_str(), 20000).value_or(true));
    std::free(program);
    return 0;
}
