// qzKeyKind: the kinds of keys for which a large dictionary or set keeps an
// index, so that its lookups do not depend on the number of chains.
//
// A class of keys (see util/StrKeys.h) is of the kind `other` unless it says
// something else:
//
//     template <> inline constexpr qzKeyKind qzKindOfKeys<qzStrKeys> = qzKeyKind::text;
#ifndef QZ_UTIL_KEYKIND_H
#define QZ_UTIL_KEYKIND_H

enum class qzKeyKind : unsigned char {
    other, // found by walking a chain
    text,  // qzStrKeys
    word   // qzAddressKeys
};

template <class Keys> inline constexpr qzKeyKind qzKindOfKeys = qzKeyKind::other;

#endif
