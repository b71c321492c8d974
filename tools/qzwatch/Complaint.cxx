#include "tools/qzwatch/Complaint.h"

#include <cctype>

namespace qzwatch {

qzStr printable(const qzStr& text) {
    qzStr shown;
    for (unsigned i = 0; i < text.length(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c < ' ' || c == 0x7F) {
            shown.append(qzStr(static_cast<int>(c), "\\x%02x"));
        } else {
            shown.append(text[i]);
        }
    }
    return shown;
}

void complain(const qzStr& name, const char* why) {
    std::fprintf(stderr, "qzwatch: %s: %s\n", printable(name).c_str(), why);
}

} // namespace qzwatch
