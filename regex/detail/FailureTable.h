// FailureTable: the (choice, position) pairs that a search has been through.
//
// One bit per pair, in pages of 4 kB that appear when their first bit is set,
// so that memory follows what a match really touches. Where a page cannot be
// had, its pairs count as not visited.
#ifndef QZ_REGEX_DETAIL_FAILURETABLE_H
#define QZ_REGEX_DETAIL_FAILURETABLE_H

#include <cstddef>
#include <cstdint>

namespace qzReg {

class FailureTable {
  public:
    FailureTable() = default;
    FailureTable(const FailureTable&) = delete;
    FailureTable& operator=(const FailureTable&) = delete;
    ~FailureTable() {
        if (pages) close();
    }

    // Makes the table ready for positions 0 to length; false without memory.
    bool open(unsigned choiceCount, std::size_t length);
    bool isOpen() const { return pages != nullptr; }
    // Gives the memory back.
    void close();

    bool visited(unsigned choice, std::size_t position) const {
        const std::uint32_t* page = pages[pageIndex(choice, position)];
        return page && page[wordIndex(position)] >> (position & 31) & 1;
    }
    void visit(unsigned choice, std::size_t position);

  private:
    static constexpr std::size_t bitsPerPage = 8 * 4096;

    std::size_t pageIndex(unsigned choice, std::size_t position) const {
        return choice * pagesPerChoice + position / bitsPerPage;
    }
    static std::size_t wordIndex(std::size_t position) { return position % bitsPerPage / 32; }

    std::uint32_t** pages = nullptr;
    std::size_t pagesPerChoice = 0;
    std::size_t pageCount = 0;
    std::size_t pageBytes = 0; // less than a whole page when the text is short
};

} // namespace qzReg

#endif
