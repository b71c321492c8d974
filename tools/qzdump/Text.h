// Octets as text that is safe on a terminal and within quotes.
#ifndef QZ_TOOLS_QZDUMP_TEXT_H
#define QZ_TOOLS_QZDUMP_TEXT_H

#include <cstdint>
#include <string>
#include <string_view>

#include "tools/qzdump/Format.h"

namespace qzdump {

// What is not printable ASCII as \xNN, always with two digits; backslashes and
// double quotes with a backslash.
std::string printable(std::string_view text);
// The same in double quotes.
std::string quoted(std::string_view text);

// At most a quarter needs an escape, not counting a NUL at the end.
bool looksLikeText(std::string_view data);

// At least eight digits of an offset.
std::string hexOffset(std::uint64_t offset);

enum class Style { Hex, Text, Shorts, Longs, Floats, Doubles };

// Hex octets, a quoted text, or numbers with spaces between; a piece of a number
// at the end is in hex. Floats and doubles are in this machine's order: they are
// not converted by readers either.
std::string rendered(std::string_view data, Style style, const ByteOrder& order);

} // namespace qzdump

#endif
