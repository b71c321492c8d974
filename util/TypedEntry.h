// qzTypedEntry: a key or value constructed in place in a container's raw block.
//
// Strings are transcribed, everything else refuses to be. Reading constructs
// the entry first and leaves nothing behind when it fails.
#ifndef QZ_UTIL_TYPEDENTRY_H
#define QZ_UTIL_TYPEDENTRY_H

#include <new>
#include <type_traits>

#include "util/Str.h"
#include "xdr/Transcriber.h"

template <class T> struct qzTypedEntry {
    static const T& at(const void* p) { return *static_cast<const T*>(p); }
    static T& at(void* p) { return *static_cast<T*>(p); }

    static void copy(const void* src, void* dst) { new (dst) T(at(src)); }
    static void create(void* dst) { new (dst) T(); }
    static void destroy(void* p) { at(p).~T(); }

    static unsigned char xdr(qzTranscriber& t, void* p) {
        if constexpr (std::is_same_v<T, qzStr>) {
            if (t.isWriting()) return at(p).xdr(t);
            create(p);
            if (at(p).xdr(t)) return 1;
            destroy(p);
        }
        return 0;
    }
};

#endif
