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

const qzBinaryTranscriber::Fields qzBinaryTranscriber::fieldsOfKinds[] = {
    {0, {}},                                               // continuation
    {0, {}},                                               // null pointer
    {1, {&Record::typeId}},                                // type definition
    {2, {&Record::id, &Record::length}},                   // new array
    {1, {&Record::id}},                                    // known array
    {2, {&Record::id, &Record::length}},                   // chars
    {2, {&Record::id, &Record::length}},                   // shorts
    {2, {&Record::id, &Record::length}},                   // longs
    {2, {&Record::id, &Record::length}},                   // floats
    {2, {&Record::id, &Record::length}},                   // doubles
    {3, {&Record::id, &Record::typeId, &Record::version}}, // object
    {1, {&Record::id}},                                    // new object
    {1, {&Record::id}},                                    // known object
    {1, {&Record::id}},                                    // new part
    {1, {&Record::id}},                                    // known part
};

void qzBinaryTranscriber::noSuchRecord() { qzFatal("Whoops!"); }

// The table

qzBinaryTranscriber::Table::Table() : multiplier(processMultiplier()) { useFew(); }

void qzBinaryTranscriber::Table::useFew() {
    std::memset(few, 0, sizeof few);
    slots = few;
    mask = (1ul << fewBits) - 1;
    shift = wordBits - fewBits;
    used = 0;
    limit = mask / 2;
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
    limit = mask / 2;
    slots = static_cast<Slot*>(qzRawTryZeroed((mask + 1) * sizeof(Slot)));
    if (!slots) qzRawExhausted();
    for (unsigned long i = 0; i <= oldMask; ++i) {
        if (old[i].notKey) slotFor(~old[i].notKey) = old[i];
    }
    if (old != few) qzRawFree(old);
    return slotFor(key);
}
