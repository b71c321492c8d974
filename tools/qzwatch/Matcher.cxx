#include "tools/qzwatch/Matcher.h"

#include <utility>

#include "event/DataTypes.h"
#include "event/StrData.h"
#include "tools/qzwatch/LinePattern.h"
#include "tools/qzwatch/Lines.h"

namespace qzwatch {

namespace {

// Makes the text up to here a string while it lives.
class StringEnd {
  public:
    explicit StringEnd(char* end) : end(end), character(*end) { *end = '\0'; }
    ~StringEnd() { *end = character; }

  private:
    char* const end;
    const char character;
};

} // namespace

Matcher::Matcher(qzTextPattern* pattern, const LinePattern* keyPattern)
    : pattern(pattern), keyPattern(keyPattern), matches(addOutput("matches", qzDT_int)),
      keys(addOutput("keys", qzDT_qzStr)) {
    pattern->addRef();
    addInput("lines", linesType, this, reinterpret_cast<void (*)()>(receive), 0);
}

Matcher::~Matcher() { pattern->delRef(); }

// A search goes from a line's beginning through as many lines as the pattern can
// take at once; what matters is which line the first match is in.
void Matcher::search(const Lines& lines) {
    const bool oneByOne = keyPattern && (lines.areStrings() || keyPattern->needsLinesAlone());
    int found = 0;
    qzStr foundKeys;
    for (const char* at = lines.begin(); at < lines.end();) {
        char* const limit = lines.endOfLine(oneByOne ? at : lines.end() - 1);
        const StringEnd stringEnd(limit);
        const int start = pattern->findBuffer(at, static_cast<unsigned>(limit - at));
        if (start >= 0) {
            ++found;
            if (keyPattern) keyPattern->appendKey(foundKeys);
        }
        const bool goOn = start >= 0 && !oneByOne && at + start < limit;
        const char* const newline = goOn ? lines.endOfLine(at + start) : nullptr;
        at = (newline ? newline : limit) + 1;
    }
    if (found) sendInt(matches, found, qzSF_Queued);
    if (foundKeys.length()) sendData(keys, new qzStrData(std::move(foundKeys)), qzSF_Queued);
}

} // namespace qzwatch
