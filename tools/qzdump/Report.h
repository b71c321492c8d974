// Report: what the program makes of a stream; one class per kind of output.
#ifndef QZ_TOOLS_QZDUMP_REPORT_H
#define QZ_TOOLS_QZDUMP_REPORT_H

#include <cstdint>
#include <memory>
#include <string>

#include "tools/qzdump/Format.h"
#include "tools/qzdump/Text.h"
#include "tools/qzdump/Tracker.h"

namespace qzdump {

// The header, every record (the tracker has it already) and the end, in order.
// Output goes to standard output.
class Report {
  public:
    virtual ~Report();
    virtual void header(const Header& header) = 0;
    virtual void record(const Record& record, std::uint64_t offset, const Tracker& tracker) = 0;
    virtual void finish(const Tracker& tracker) = 0;

  protected:
    static void print(const std::string& text);
};

// A line per record. Of its data the first shownData bytes are shown; those of an
// object, whose members no stream describes, in memberStyle.
std::unique_ptr<Report> makeListing(std::size_t shownData, Style memberStyle);

// The graph of objects and arrays for Graphviz.
std::unique_ptr<Report> makeGraph();

// Records and bytes by type. The bytes of all rows are those of the stream.
std::unique_ptr<Report> makeStatistics();

} // namespace qzdump

#endif
