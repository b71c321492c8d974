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
    recent = reinterpret_cast<Page*>(pageTable.lookup(key));
    if (!recent) {
        recent = pages = new Page{pages, {}};
        pageTable.set(key, reinterpret_cast<unsigned long>(recent));
    }
    recentKey = key;
}

bool qzObjectIds::findMet(const void* address, unsigned& id) {
    while (indexed < addresses.length()) {
        const void* const met = addresses[indexed];
        index.set(number(met), ++indexed);
    }
    const unsigned long place = index.lookup(number(address));
    if (place) id = first + static_cast<unsigned>(place) - 1;
    return place;
}
