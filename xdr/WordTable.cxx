#include "xdr/WordTable.h"

#include <unistd.h>

#include <climits>
#include <cstring>

#include "util/detail/RawMemory.h"

namespace {

const unsigned wordBits = sizeof(unsigned long) * CHAR_BIT;

// Any odd number is a multiplier.
unsigned long randomMultiplier() {
    unsigned long bits = 0x9e3779b9;
    if (getentropy(&bits, sizeof bits) != 0) bits ^= reinterpret_cast<unsigned long>(&bits);
    return bits | 1;
}

} // namespace

unsigned long qzWordTable::processMultiplier() {
    static const unsigned long multiplier = randomMultiplier();
    return multiplier;
}

qzWordTable::qzWordTable() : multiplier(processMultiplier()) { useFew(); }

void qzWordTable::useFew() {
    std::memset(few, 0, sizeof few);
    slots = few;
    mask = (1ul << fewBits) - 1;
    shift = wordBits - fewBits;
    used = 0;
}

void qzWordTable::clear() {
    if (used == 0) return;
    if (slots != few) qzRawFree(slots);
    useFew();
}

// The order of the slots is that of the hashes' highest bits: entries go from
// front to back into the larger block, nearly as they were.
qzWordTable::Slot& qzWordTable::grownSlotFor(unsigned long key) {
    Slot* const old = slots;
    const unsigned long oldMask = mask;
    mask = mask * 2 + 1;
    --shift;
    slots = static_cast<Slot*>(qzRawTryZeroed((mask + 1) * sizeof(Slot)));
    if (!slots) qzRawExhausted();
    for (unsigned long i = 0; i <= oldMask; ++i) {
        if (old[i].value) slotFor(old[i].key) = old[i];
    }
    if (old != few) qzRawFree(old);
    return slotFor(key);
}
