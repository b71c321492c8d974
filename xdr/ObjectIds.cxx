#include "xdr/ObjectIds.h"

void qzObjectIds::clear() {
    first = next();
    addresses.resize(0);
    while (Page* const page = pages) {
        pages = page->next;
        delete page;
    }
    recent = nullptr;
    pageTable.clear();
    index.clear();
    indexed = 0;
}

void qzObjectIds::takePage(std::uintptr_t key) {
    unsigned long& page = pageTable[key];
    if (!page) {
        pages = new Page{pages, {}};
        page = reinterpret_cast<unsigned long>(pages);
    }
    recent = reinterpret_cast<Page*>(page);
    recentKey = key;
}

bool qzObjectIds::findMet(const void* address, unsigned& id) {
    for (const unsigned length = addresses.length(); indexed < length; ++indexed)
        index[number(addresses[indexed])] = first + indexed;
    const unsigned long* const known = index.lookup(number(address));
    if (known) id = static_cast<unsigned>(*known);
    return known;
}
