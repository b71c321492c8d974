#include "xdr/BinaryTranscriber.h"

#include <unistd.h>

#include <climits>
#include <cstring>

#include "util/Fatal.h"
#include "util/detail/RawMemory.h"

namespace {

const unsigned wordBits = sizeof(unsigned long) * CHAR_BIT;

// Any odd number is a multiplier.
unsigned long randomMultiplier() {
    unsigned long bits = 0x9e3779b9;
    if (getentropy(&bits, sizeof bits) != 0) bits ^= reinterpret_cast<unsigned long>(&bits);
    return bits | 1;
}

unsigned long processMultiplier() {
    static const unsigned long multiplier = randomMultiplier();
    return multiplier;
}

} // namespace

qzBinaryTranscriber::qzBinaryTranscriber()
    : buffer(space + headerSize), cursor(buffer), capacity(qzBinaryRecord::maxData),
      count(0), record{} {}

qzBinaryTranscriber::~qzBinaryTranscriber() = default;

const qzBinaryTranscriber::Fields& qzBinaryTranscriber::fieldsOf(unsigned kind) {
    static const Fields none = {};
    static const Fields type = {1, {&Record::typeId}};
    static const Fields array = {2, {&Record::id, &Record::length}};
    static const Fields object = {3, {&Record::id, &Record::typeId, &Record::version}};
    static const Fields reference = {1, {&Record::id}};
    using namespace qzBinaryRecord;
    if (kind > LastUsedKind) qzFatal("Whoops!");
    if (kind == TypeDefinition) return type;
    if (kind == NewArray || isArrayBody(kind)) return array;
    if (kind == ObjectBody) return object;
    return isReference(kind) ? reference : none;
}

// The table

qzBinaryTranscriber::Table::Table() : multiplier(processMultiplier()) { useFew(); }

void qzBinaryTranscriber::Table::useFew() {
    std::memset(few, 0, sizeof few);
    slots = few;
    mask = (1ul << fewBits) - 1;
    shift = wordBits - fewBits;
    used = 0;
    limit = mask * 3 / 4;
}

void qzBinaryTranscriber::Table::clear() {
    if (used == 0) return;
    if (slots != few) qzRawFree(slots);
    useFew();
}

// The order of the slots is that of the hashes' highest bits: entries go from
// front to back into the larger block, nearly as they were.
qzBinaryTranscriber::Table::Slot& qzBinaryTranscriber::Table::grownSlotFor(unsigned long key) {
    Slot* const old = slots;
    const unsigned long oldMask = mask;
    mask = mask * 2 + 1;
    shift -= 1;
    limit = mask / 4 * 3;
    slots = static_cast<Slot*>(qzRawTryZeroed((mask + 1) * sizeof(Slot)));
    if (!slots) qzRawExhausted();
    for (unsigned long i = 0; i <= oldMask; ++i) {
        if (old[i].notKey) slotFor(~old[i].notKey) = old[i];
    }
    if (old != few) qzRawFree(old);
    return slotFor(key);
}
