// qzStrKeys: how the typed dictionaries and sets treat string keys.
#ifndef QZ_UTIL_STRKEYS_H
#define QZ_UTIL_STRKEYS_H

#include "util/KeyKind.h"
#include "util/Str.h"

struct QZ_EXPORT qzStrKeys {
    using Key = qzStr;
    static unsigned hash(const qzStr& key) { return key.hash(); }
    static int compare(const qzStr& a, const qzStr& b) {
        // Keys that share a chain mostly differ at once; that needs no call.
        const int first = static_cast<unsigned char>(*a.data) - static_cast<unsigned char>(*b.data);
        if (first) return first;
        if (a == b) return 0; // by length and memory, faster than by text
        return ::compare(a, b);
    }
};

template <> inline constexpr qzKeyKind qzKindOfKeys<qzStrKeys> = qzKeyKind::text;

#endif
