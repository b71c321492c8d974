#include "tools/qzwatch/Reporter.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <vector>

#include "event/DataTypes.h"
#include "tools/qzwatch/Complaint.h"
#include "tools/qzwatch/Counter.h"
#include "tools/qzwatch/Lines.h"

namespace qzwatch {

namespace {

struct Entry {
    const qzStr* key;
    double count;
};

bool isHigher(const Entry& a, const Entry& b) {
    return a.count != b.count ? a.count > b.count : *a.key < *b.key;
}

std::vector<Entry> highestOf(KeyCounts& keys, unsigned most) {
    std::vector<Entry> entries;
    for (KeyCountsIter i(keys); i.notDone(); ++i)
        entries.push_back({i.getKey(), *i.getValue()});
    const std::size_t kept = std::min<std::size_t>(most, entries.size());
    std::partial_sort(entries.begin(), entries.begin() + kept, entries.end(), isHigher);
    entries.resize(kept);
    return entries;
}

void showKeys(const std::vector<Entry>& entries) {
    static const char bar[] = "################################";
    for (const Entry& entry : entries) {
        qzStr key = *entry.key;
        std::replace(key.data, key.data + key.length(), '\n', '\0'); // see Lines.h
        const double share = entry.count / std::max(entries.front().count, 1.0);
        std::printf("%14.0f  %-32s  %.*s\n", entry.count,
                    key.length() ? printable(key).c_str() : "\"\"",
                    static_cast<int>(1 + share * (sizeof bar - 2)), bar);
    }
}

// A line that fills the last column, too, could wrap. No character takes more columns
// than it has octets, so these are counted.
void cutToTerminal(qzStr& line) {
    winsize window;
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &window) != 0 || window.ws_col == 0) return;
    unsigned end = window.ws_col - 1u;
    if (line.length() <= end) return;
    while (end > 0 && (line[end] & 0xC0) == 0x80)
        --end;
    line.resize(end);
}

double seconds(std::chrono::steady_clock::duration time) {
    return std::chrono::duration<double>(time).count();
}

} // namespace

Reporter::Reporter(const qzVoidPtrArray& counters)
    : counters(counters), onTerminal(isatty(STDERR_FILENO)) {
    addInput("lines", linesType, this, reinterpret_cast<void (*)()>(receive), 0);
    addInput("tick", qzDT_void, this, reinterpret_cast<void (*)()>(tick), 0);
}

Reporter::~Reporter() = default;

void Reporter::receive(Reporter* reporter, const Lines& lines) {
    reporter->bytes += lines.length();
}

void Reporter::showProgress() {
    const Clock::time_point now = Clock::now();
    const double rate = (bytes - bytesAtLast) / std::max(seconds(now - last), 1e-6);
    qzStr line;
    line.format("%.1f s  %.1f MB  %.1f MB/s", seconds(now - start), bytes / 1e6, rate / 1e6);
    for (unsigned i = 0; i < counters.length(); ++i) {
        const auto* const counter = static_cast<Counter*>(counters[i]);
        line.append("  " | printable(counter->getName()) | " ");
        line.append(qzStr(counter->getLines(), "%.0f"));
    }
    if (onTerminal) cutToTerminal(line);
    lineIsOpen = onTerminal;
    std::fprintf(stderr, onTerminal ? "\r%s\033[K" : "%s\n", line.c_str());
    last = now;
    bytesAtLast = bytes;
}

void Reporter::endProgress() {
    showProgress();
    if (onTerminal) std::fputc('\n', stderr);
    lineIsOpen = false;
}

void Reporter::showTable(unsigned highest) const {
    for (unsigned i = 0; i < counters.length(); ++i) {
        auto* const counter = static_cast<Counter*>(counters[i]);
        std::printf("%10.0f  %s\n", counter->getLines(), printable(counter->getName()).c_str());
        showKeys(highestOf(counter->getKeys(), highest));
    }
}

} // namespace qzwatch
