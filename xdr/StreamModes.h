// What a stream type is called by the system.
#ifndef QZ_XDR_STREAMMODES_H
#define QZ_XDR_STREAMMODES_H

#include "xdr/Stream.h"

// The stdio mode: "r", "w", "r+"; null for any other value.
QZ_EXPORT const char* stdioType(qzStream::qzStreamType type);

// The access mode of open(): any other value is read-only.
QZ_EXPORT int unixType(qzStream::qzStreamType type);

#endif
