// QZ_EXPORT: the one mark of what the shared library exports.
//
// The library is compiled with hidden visibility; a class, function or object
// that applications use carries this mark.
#ifndef QZ_UTIL_EXPORT_H
#define QZ_UTIL_EXPORT_H

#define QZ_EXPORT __attribute__((visibility("default")))

#endif
