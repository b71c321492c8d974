// qzObjectIds: the object table of a writer, ids by address.
//
// Most of what is written is met once, and each address would have a place of its
// own in a hash table: to go there would cost more than all else. Addresses are
// therefore kept in the order of their ids, and a bit for every 16 bytes of memory
// tells which may have been met. Only when one has, a hash table is made of them.
//
// Cost: a word an address, and 512 bytes for each 64 kB of memory that has any;
// four to eight words and a search more from when one may have been met again.
#ifndef QZ_XDR_OBJECTIDS_H
#define QZ_XDR_OBJECTIDS_H

#include <cstdint>

#include "util/VoidPtrArray.h"
#include "xdr/WordTable.h"

class QZ_EXPORT qzObjectIds {
  public:
    qzObjectIds() : first(0), pages(nullptr), recent(nullptr), recentKey(0), indexed(0) {}
    qzObjectIds(const qzObjectIds&) = delete;
    qzObjectIds& operator=(const qzObjectIds&) = delete;
    ~qzObjectIds() { clear(); }

    // The address's id; false when it has none.
    bool find(const void* address, unsigned& id) {
        return (bitsOf(address) & bitOf(address)) && findMet(address, id);
    }
    // Gives the address the next id, in place of one that it has.
    unsigned add(void* address) {
        bitsOf(address) |= bitOf(address);
        addresses.append(address);
        return next() - 1;
    }
    // The id of the oldest address, and of the next.
    unsigned oldest() const { return first; }
    unsigned next() const { return first + addresses.length(); }
    // Forgets the addresses; ids go on rising.
    void clear();

  private:
    struct Page {
        static const unsigned shift = 16; // of the addresses that share a page
        Page* next;
        std::uint32_t bits[(1 << shift) / 16 / 32];
    };

    static std::uintptr_t number(const void* address) {
        return reinterpret_cast<std::uintptr_t>(address);
    }
    static std::uint32_t bitOf(const void* address) { return 1u << (number(address) / 16 % 32); }
    std::uint32_t& bitsOf(const void* address) {
        const std::uintptr_t key = number(address) >> Page::shift;
        if (!recent || key != recentKey) takePage(key);
        return recent->bits[number(address) / 16 / 32 % (sizeof recent->bits / 4)];
    }
    void takePage(std::uintptr_t key);
    bool findMet(const void* address, unsigned& id);

    unsigned first;           // id
    qzVoidPtrArray addresses; // by id, from the first on
    Page* pages;              // all, newest first
    Page* recent;
    std::uintptr_t recentKey;
    qzWordTable pageTable;
    qzWordTable index; // places among the addresses, from 1, by address
    unsigned indexed;  // addresses that are in there
};

#endif
