// qzStrKeys: how the typed dictionaries and sets treat string keys.
#ifndef QZ_UTIL_STRKEYS_H
#define QZ_UTIL_STRKEYS_H

#include "util/Str.h"

struct qzStrKeys {
    using Key = qzStr;
    static unsigned hash(const qzStr& key) { return key.hash(); }
    static int compare(const qzStr& a, const qzStr& b) { return ::compare(a, b); }
};

#endif
