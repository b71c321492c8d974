// Source: a file read once, front to back, through a window of bounded size: a
// stream may be longer than memory, and a pipe cannot go back.
#ifndef QZ_TOOLS_QZDUMP_SOURCE_H
#define QZ_TOOLS_QZDUMP_SOURCE_H

#include <cstdint>
#include <cstdio>
#include <string_view>
#include <vector>

namespace qzdump {

class Source {
  public:
    static constexpr std::size_t windowSize = 1 << 20;

    // The file is the caller's.
    explicit Source(std::FILE* file);

    // The bytes ahead: n (at most windowSize) or more; fewer only where the file
    // ends. Good until the next call.
    std::string_view peek(std::size_t n);
    // Over bytes that were seen by peek().
    void skip(std::size_t n);

    std::uint64_t offset() const { return passed; }
    // Why reading failed, as an errno value, or 0.
    int error() const { return readError; }

  private:
    void fill();

    std::FILE* file;
    std::vector<char> window;
    std::size_t begin = 0; // the bytes ahead: [begin, end) of the window
    std::size_t end = 0;
    bool ended = false;
    int readError = 0;
    std::uint64_t passed = 0;
};

} // namespace qzdump

#endif
