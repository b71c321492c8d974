// A stream over a block in memory: to read, or to write at most `limit` bytes.
// And what a file holds.
#ifndef QZ_TESTS_SUPPORT_MEMORYSTREAM_H
#define QZ_TESTS_SUPPORT_MEMORYSTREAM_H

#include <fstream>
#include <sstream>
#include <string>

#include "xdr/StdioStream.h"

struct MemoryBlock {
    std::string block;
};

class MemoryStream : private MemoryBlock, public qzStdioStream {
  public:
    explicit MemoryStream(const std::string& bytes)
        : MemoryBlock{bytes}, qzStdioStream(fmemopen(&block[0], block.size(), "r"), qzST_Read) {}
    explicit MemoryStream(std::size_t limit)
        : MemoryBlock{std::string(limit, '\0')},
          qzStdioStream(fmemopen(&block[0], limit, "w"), qzST_Write) {
        if (file) std::setvbuf(file, nullptr, _IONBF, 0); // refuse at once
    }

    // What has been written since the last call.
    std::string take() {
        const std::size_t from = taken;
        taken = file ? static_cast<std::size_t>(std::ftell(file)) : 0;
        return block.substr(from, taken - from);
    }

  private:
    std::size_t taken = 0;
};

inline std::string fileContent(const std::string& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

#endif
