// qzWordTable: a hash table from words to words, in one block. Keys cannot be
// removed one by one.
//
// Open addressing with linear probing; slots by multiply-shift hashing
// (Dietzfelbinger et al. 1997) with a multiplier that differs from process to
// process, so that no stream can choose ids that collide.
//
// Cost: constant; a table of up to 7 keys takes no block.
#ifndef QZ_XDR_WORDTABLE_H
#define QZ_XDR_WORDTABLE_H

#include "util/Export.h"

class QZ_EXPORT qzWordTable {
  public:
    qzWordTable();
    qzWordTable(const qzWordTable&) = delete;
    qzWordTable& operator=(const qzWordTable&) = delete;
    ~qzWordTable() { clear(); }

    // The key's value, null when it is absent. Values move as keys are added. The
    // largest word is no key.
    unsigned long* lookup(unsigned long key) const {
        Slot& slot = slotFor(key);
        return slot.notKey ? &slot.value : nullptr;
    }
    // The key's value; an absent key is added with 0.
    unsigned long& operator[](unsigned long key) {
        Slot* slot = &slotFor(key);
        if (!slot->notKey) {
            if (++used > mask / 2) slot = &grownSlotFor(key);
            slot->notKey = ~key;
        }
        return slot->value;
    }
    void clear();

  private:
    struct Slot {
        unsigned long notKey; // the key's complement; 0 is a free slot
        unsigned long value;
    };
    static const unsigned fewBits = 4; // of the number of slots that need no block

    static unsigned long processMultiplier();
    // Where the key is, or where it would go.
    Slot& slotFor(unsigned long key) const {
        for (unsigned long i = key * multiplier >> shift;; i = (i + 1) & mask) {
            if (slots[i].notKey == ~key || !slots[i].notKey) return slots[i];
        }
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
