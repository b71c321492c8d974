#include <cinttypes>
#include <cstdio>
#include <map>

#include "tools/qzdump/Report.h"

namespace qzdump {

namespace {

struct Sums {
    std::uint64_t bodies = 0;
    std::uint64_t records = 0;
    std::uint64_t bytes = 0;

    void add(std::uint64_t moreBodies, std::uint64_t moreRecords, std::uint64_t moreBytes) {
        bodies += moreBodies;
        records += moreRecords;
        bytes += moreBytes;
    }
};

std::string row(const Sums& sums, const std::string& name) {
    char numbers[80];
    std::snprintf(numbers, sizeof numbers, "%10" PRIu64 " %10" PRIu64 " %14" PRIu64 "  ",
                  sums.bodies, sums.records, sums.bytes);
    return numbers + name + '\n';
}

class Statistics : public Report {
  public:
    void header(const Header& header) override { headerBytes = header.size; }
    void record(const Record& record, std::uint64_t offset, const Tracker& tracker) override;
    void finish(const Tracker& tracker) override;

  private:
    static std::string rowName(const Record& record, const Tracker& tracker);

    std::size_t headerBytes = 0;
    Sums definitions;
    Sums stray;                       // outside of any body
    std::map<std::string, Sums> rows; // by type or kind of array
    Sums* open = &stray;              // the row of the open body
};

void Statistics::record(const Record& record, std::uint64_t, const Tracker& tracker) {
    if (record.kind == TypeDefinition) {
        definitions.add(0, 1, record.size);
        return;
    }
    if (isBody(record.kind)) open = &rows[rowName(record, tracker)];
    open->add(isBody(record.kind), 1, record.size);
}

std::string Statistics::rowName(const Record& record, const Tracker& tracker) {
    if (isArrayBody(record.kind)) return std::string("array of ") + kindName(record.kind);
    return "object " + quoted(tracker.typeName(record.typeId));
}

void Statistics::finish(const Tracker&) {
    Sums total;
    total.add(0, 0, headerBytes);
    print("    bodies    records          bytes  type\n" + row(total, "header") +
          row(definitions, "type definitions"));
    rows["outside of any body"] = stray;
    for (const auto& [name, sums] : rows) {
        if (sums.records > 0) print(row(sums, name));
        total.add(sums.bodies, sums.records, sums.bytes);
    }
    total.add(0, definitions.records, definitions.bytes);
    print(row(total, "total"));
}

} // namespace

std::unique_ptr<Report> makeStatistics() { return std::make_unique<Statistics>(); }

} // namespace qzdump
