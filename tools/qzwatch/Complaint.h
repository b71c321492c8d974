// What goes wrong, in one form: "qzwatch: NAME: why" on standard error.
#ifndef QZ_TOOLS_QZWATCH_COMPLAINT_H
#define QZ_TOOLS_QZWATCH_COMPLAINT_H

#include <cstdio>

#include "util/Str.h"

namespace qzwatch {

// The exit status.
enum Status { Good = 0, Failed = 1, Refused = 2 };

// The text with control characters as \xNN, so that neither names nor what is
// found in a log can drive a terminal. Those above ASCII, too, as UTF-8 and as single
// octets.
qzStr printable(const qzStr& text);

// Whether a line of progress stands on the terminal, which a message replaces.
extern bool lineIsOpen;

void complain(const qzStr& name, const char* why);

} // namespace qzwatch

#endif
