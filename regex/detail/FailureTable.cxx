#include "regex/detail/FailureTable.h"

#include "util/detail/RawMemory.h"

namespace qzReg {

void FailureTable::close() {
    for (std::size_t i = 0; i < pageCount; ++i)
        qzRawFree(pages[i]);
    qzRawFree(pages);
    pages = nullptr;
    pageCount = 0;
}

bool FailureTable::open(unsigned choiceCount, std::size_t length) {
    const std::size_t largest = static_cast<std::size_t>(-1) / sizeof(std::uint32_t*);
    pagesPerChoice = length / bitsPerPage + 1;
    if (choiceCount == 0 || pagesPerChoice > largest / choiceCount) return false;
    const std::size_t wanted = choiceCount * pagesPerChoice;
    pages = static_cast<std::uint32_t**>(qzRawTryAlloc(wanted * sizeof *pages));
    if (!pages) return false;
    qzRawZero(pages, wanted * sizeof *pages);
    pageCount = wanted;
    pageBytes = (length < bitsPerPage ? length / 32 + 1 : bitsPerPage / 32) * sizeof **pages;
    return true;
}

void FailureTable::visit(unsigned choice, std::size_t position) {
    std::uint32_t*& page = pages[pageIndex(choice, position)];
    if (!page) {
        page = static_cast<std::uint32_t*>(qzRawTryAlloc(pageBytes));
        if (!page) return;
        qzRawZero(page, pageBytes);
    }
    page[wordIndex(position)] |= std::uint32_t{1} << (position & 31);
}

} // namespace qzReg
