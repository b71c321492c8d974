#include "tools/qzwatch/Lines.h"

#include "event/DataTypes.h"
#include "event/Toolkit.h"
#include "util/Sequencer.h"

namespace qzwatch {

unsigned short linesType = 0;

namespace {

void drawLinesType() { linesType = static_cast<unsigned short>((*qz_nextDataType)()); }

qzOrderedGlobal* needs[] = {&qzOG_Init, nullptr};
qzOrderedGlobal linesTypeGlobal(drawLinesType, needs, qzOrderedGlobal::application);

} // namespace

Lines::Lines(qzStr block) : text(std::move(block)), terminator('\n') {
    if (!std::memchr(begin(), '\0', length())) return;
    terminator = '\0';
    for (unsigned i = 0; i < length(); ++i) {
        if (text[i] == '\0') {
            text[i] = '\n';
        } else if (text[i] == '\n') {
            text[i] = '\0';
        }
    }
}

LinesData::~LinesData() = default;

void LinesData::deliverTo(void (*function)(), void* object) {
    reinterpret_cast<void (*)(void*, const Lines&)>(function)(object, lines);
}

void LinesData::getValue(unsigned short, void* destination) {
    *static_cast<Lines*>(destination) = lines;
}

} // namespace qzwatch
