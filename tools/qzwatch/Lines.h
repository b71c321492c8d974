// Lines: a block of whole lines, and LinesData, the message that carries it from
// a reader to the matchers.
//
// A message a line would cost more than most matches do: a block is one event for
// each receiver, however many lines are in it. Strings would be copied for each
// receiver, as values are; these lines are lent to it for the call.
//
// A pattern stops at a NUL. In a block that holds NULs these change places with
// the newlines: each line is a string then, and a newline in it stands for a NUL.
#ifndef QZ_TOOLS_QZWATCH_LINES_H
#define QZ_TOOLS_QZWATCH_LINES_H

#include <cstring>
#include <utility>

#include "event/Data.h"
#include "util/Str.h"

namespace qzwatch {

class Lines {
  public:
    explicit Lines(qzStr block); // ends with a newline

    const char* begin() const { return text.c_str(); }
    const char* end() const { return begin() + text.length(); }
    unsigned length() const { return text.length(); }
    // The terminator of the line that is at hand.
    char* endOfLine(const char* at) const {
        return static_cast<char*>(const_cast<void*>(std::memchr(at, terminator, end() - at)));
    }
    bool areStrings() const { return terminator == '\0'; }

  private:
    qzStr text;
    char terminator;
};

extern unsigned short linesType; // the type code of the message; from start-up on

class LinesData : public qzData {
  public:
    explicit LinesData(qzStr block) : qzData(linesType), lines(std::move(block)) {}
    ~LinesData() override;

    const char* dataName() const override { return "Lines"; }
    // function(object, const Lines&)
    void deliverTo(void (*function)(), void* object) override;
    void getValue(unsigned short type, void* destination) override;
    unsigned getSize() override { return sizeof lines; }

  private:
    Lines lines;
};

} // namespace qzwatch

#endif
