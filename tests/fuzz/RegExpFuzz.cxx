// Fuzzes the regular-expression engine. Input: pattern, NUL, subject, NUL,
// template. Any input may fail to compile or match; none may crash, hang or
// differ from the naive matcher where that one can afford an answer.
#include "regex/RegExp.h"
#include "tests/regex/NaiveMatcher.h"

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream input(std::string(reinterpret_cast<const char*>(data), size));
    std::string pattern, subject, source;
    std::getline(input, pattern, '\0');
    std::getline(input, subject, '\0');
    std::getline(input, source, '\0');
    source += "&\\1\\2\\3\\4\\5\\6\\7\\8\\9"; // reads all bounds

    qzregexp* const program = qzregcomp(pattern.c_str());
    if (!program) return 0;
    const std::size_t largest = 1 << 20;
    std::vector<char> dest(source.size() * (subject.size() + 1) + 1);
    if (qzregexec(program, subject.c_str()) && dest.size() <= largest)
        qzregsub(program, source.c_str(), dest.data());
    const std::size_t longest = 500; // the naive matcher recurses for every character
    if (subject.size() <= longest && !NaiveMatcher::agrees(program, subject.c_str(), 20000))
        std::abort();
    std::free(program);
    return 0;
}
