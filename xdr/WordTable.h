// qzWordTable: a hash table from words to words other than 0, in one block. Keys
// cannot be removed one by one.
//
// Open addressing with linear probing; slots by multiply-shift hashing
// (Dietzfelbinger et al. 1997) with a multiplier that differs from process to
// process, so that no stream can choose ids that collide.
//
// Cost: constant; a table of up to 7 keys takes no block.
#ifndef QZ_XDR_WORDTABLE_H
#define QZ_XDR_WORDTABLE_H

#include <cassert>

#include "util/Export.h"

class QZ_EXPORT qzWordTable {
  public:
    qzWordTable();
    qzWordTable(const qzWordTable&) = delete;
    qzWordTable& operator=(const qzWordTable&) = delete;
    ~qzWordTable() { clear(); }

    // The key's value, 0 when it is absent.
    unsigned long lookup(unsigned long key) const { return slotFor(key).value; }
    // Adds the key, or replaces its value.
    void set(unsigned long key, unsigned long value) {
        assert(value);
        Slot* slot = &slotFor(key);
        if (!slot->value && ++used > mask / 2) slot = &grownSlotFor(key);
        *slot = {key, value};
    }
    void clear();

  private:
    struct Slot {
        unsigned long key;
        unsigned long value; // 0 in a free slot
    };
    static const unsigned fewBits = 4; // of the number of slots that need no block

    static unsigned long processMultiplier();
    // Where the key is, or where it would go.
    Slot& slotFor(unsigned long key) const {
        unsigned long i = key * multiplier >> shift;
        while (slots[i].value && slots[i].key != key)
            i = (i + 1) & mask;
        return slots[i];
    }
    Slot& grownSlotFor(unsigned long key);
    void useFew();

    Slot few[1 << fewBits];
    Slot* slots;
    unsigned long mask; // number of slots - 1
    unsigned shift;     // leaves the highest bits of a word, as many as the mask has
    unsigned long used;
    const unsigned long multiplier;
};

#endif
