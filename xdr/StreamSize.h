// qzStreamSize: what a value takes in a stream, in bytes.
//
// A stream records element, key and value sizes as they are on the reference
// target, whatever the size in memory is: this is the one place that knows.
#ifndef QZ_XDR_STREAMSIZE_H
#define QZ_XDR_STREAMSIZE_H

#include <type_traits>

class qzStr;

template <class T> constexpr unsigned short qzStreamSize() {
    if constexpr (std::is_same_v<T, long> || std::is_same_v<T, unsigned long> ||
                  std::is_pointer_v<T>) {
        return 4;
    } else if constexpr (std::is_same_v<T, qzStr>) {
        return 8;
    } else {
        return sizeof(T);
    }
}

#endif
