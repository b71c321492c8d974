// qzBinaryOTDict: words by word, for transcribers that keep objects by address or
// by id. See util/TypedDictionary.h; entries cannot be transcribed.
//
// The binary transcribers have tables of their own, which need not be walked:
// qzObjectIds and qzWordTable.
#ifndef QZ_XDR_BINARYOTDICT_H
#define QZ_XDR_BINARYOTDICT_H

#include "util/TypedDictionary.h"

struct QZ_EXPORT qzAddressKeys {
    using Key = unsigned long;
    // Keys are mostly word-aligned addresses: their last two bits say nothing.
    static unsigned hash(unsigned long key) { return static_cast<unsigned>(key >> 2); }
    static int compare(unsigned long a, unsigned long b) { return a != b; }
};
template <> inline constexpr qzKeyKind qzKindOfKeys<qzAddressKeys> = qzKeyKind::word;

class QZ_EXPORT qzBinaryOTDict
    : public qzTypedDictionary<qzBinaryOTDict, qzAddressKeys, unsigned long> {
  public:
    using qzTypedDictionary::qzTypedDictionary;
    ~qzBinaryOTDict() override;
};

extern template class qzTypedKeys<qzDictionary, qzAddressKeys, qzBinaryOTDict>;
extern template class qzTypedDictionary<qzBinaryOTDict, qzAddressKeys, unsigned long>;

#endif
