#include "util/Sequencer.h"

qzSequencer::qzSequencer() = default;

qzSequencer::~qzSequencer() = default;

unsigned qzSequencer::operator()() {
    if (ranges.length() == 0) {
        ranges.append(qzSeqRange{0, 1});
        return 0;
    }
    qzSeqRange& first = ranges[0];
    if (first.start > 0) {
        ++first.length;
        return --first.start;
    }
    const unsigned number = first.length++;
    trymerge(0);
    return number;
}

unsigned qzSequencer::operator()(unsigned n) {
    const unsigned runs = ranges.length();
    unsigned i = 0;
    while (i < runs && ranges[i].start <= n)
        ++i;
    if (i < runs && n == ranges[i].start - 1) {
        --ranges[i].start;
        ++ranges[i].length;
    } else if (i > 0 && i < runs && n == ranges[i - 1].start + ranges[i - 1].length) {
        ++ranges[i - 1].length;
    } else {
        ranges.insert(qzSeqRange{n, 1}, i);
        if (i < runs) return n; // free on both sides
    }
    if (i > 0) trymerge(i - 1);
    return n;
}

void qzSequencer::trymerge(unsigned i) {
    if (i + 1 >= ranges.length()) return;
    if (ranges[i].start + ranges[i].length != ranges[i + 1].start) return;
    ranges[i].length += ranges[i + 1].length;
    ranges.remove(i + 1, 1);
}
