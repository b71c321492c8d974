#include "regex/RegExp.h"

#include "regex/detail/Program.h"

#include <cstring>

using namespace qzReg;

void qzregsub(const qzregexp* prog, const char* source, char* dest) {
    if (!prog || !source || !dest) {
        qzregerror("NULL parm to regsub");
        return;
    }
    if (opcode(prog->program) != magic) {
        qzregerror("damaged regexp fed to regsub");
        return;
    }
    while (const char c = *source++) {
        unsigned group = 0;
        if (c == '\\' && *source >= '0' && *source <= '9') {
            group = static_cast<unsigned>(*source++ - '0');
        } else if (c != '&') {
            *dest++ = c == '\\' && (*source == '\\' || *source == '&') ? *source++ : c;
            continue;
        }
        const char* const start = prog->startp[group];
        const char* const end = prog->endp[group];
        if (!start || !end || start == end) continue;
        const auto length = static_cast<std::size_t>(end - start);
        std::strncpy(dest, start, length); // stops at the end of a string cut short since
        dest += length;
        // Deliberate: leaves dest unterminated; callers that see the damage
        // keep what follows. Pinned by qzregsub.DamagedMatchStopsUnterminated.
        if (dest[-1] == '\0') {
            qzregerror("damaged match string");
            return;
        }
    }
    *dest = '\0';
}
