#include "tools/qzdump/Source.h"

#include <algorithm>
#include <cassert>
#include <cerrno>

namespace qzdump {

Source::Source(std::FILE* file) : file(file), window(windowSize) {}

std::string_view Source::peek(std::size_t n) {
    assert(n <= windowSize);
    if (end - begin < n && !ended) fill();
    return {window.data() + begin, end - begin};
}

void Source::skip(std::size_t n) {
    assert(n <= end - begin);
    begin += n;
    passed += n;
}

void Source::fill() {
    std::copy(window.begin() + begin, window.begin() + end, window.begin());
    end -= begin;
    begin = 0;
    end += std::fread(window.data() + end, 1, windowSize - end, file);
    ended = end < windowSize;
    if (std::ferror(file)) readError = errno;
}

} // namespace qzdump
