#include "tools/qzwatch/Complaint.h"

namespace qzwatch {

bool lineIsOpen = false;

namespace {

// By the first octet; 0 if no UTF-8 character begins with it.
unsigned sizeOfCharacter(unsigned char first) {
    if (first < 0x80) return 1;
    if (first < 0xC0 || first >= 0xF8) return 0;
    return first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
}

// The size of the character that begins there, and its code; of an octet that is no
// valid UTF-8, its own.
unsigned decode(const char* at, unsigned left, unsigned& code) {
    static const unsigned least[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto first = static_cast<unsigned char>(*at);
    code = first;
    const unsigned size = sizeOfCharacter(first);
    if (size < 2 || size > left) return 1;
    unsigned whole = first & (0x7F >> size);
    for (unsigned i = 1; i < size; ++i) {
        if ((at[i] & 0xC0) != 0x80) return 1;
        whole = whole << 6 | (at[i] & 0x3F);
    }
    const bool isSurrogate = whole >= 0xD800 && whole < 0xE000;
    if (whole < least[size] || whole > 0x10FFFF || isSurrogate) return 1;
    code = whole;
    return size;
}

bool isControl(unsigned code) { return code < ' ' || (code >= 0x7F && code < 0xA0); }

} // namespace

qzStr printable(const qzStr& text) {
    qzStr shown;
    for (unsigned i = 0; i < text.length();) {
        unsigned code;
        const unsigned size = decode(text.c_str() + i, text.length() - i, code);
        for (const unsigned end = i + size; i < end; ++i) {
            if (isControl(code)) {
                shown.append(qzStr(text[i] & 0xFF, "\\x%02x"));
            } else {
                shown.append(text[i]);
            }
        }
    }
    return shown;
}

void complain(const qzStr& name, const char* why) {
    if (lineIsOpen) std::fputs("\r\033[K", stderr);
    lineIsOpen = false;
    std::fprintf(stderr, "qzwatch: %s: %s\n", printable(name).c_str(), why);
}

} // namespace qzwatch
