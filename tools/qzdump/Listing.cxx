#include <algorithm>

#include "tools/qzdump/Report.h"

namespace qzdump {

namespace {

Style styleOf(unsigned bodyKind, std::string_view data, Style memberStyle) {
    switch (bodyKind) {
    case ObjectBody:
        return memberStyle;
    case qzBOT_Chars:
        return looksLikeText(data) ? Style::Text : Style::Hex;
    case qzBOT_Shorts:
        return Style::Shorts;
    case qzBOT_Longs:
        return Style::Longs;
    case qzBOT_Floats:
        return Style::Floats;
    case qzBOT_Doubles:
        return Style::Doubles;
    default:
        return Style::Hex;
    }
}

std::string orderName(const char* name) {
    return name ? name : "in an unknown order, shown as little-endian";
}

class Listing : public Report {
  public:
    Listing(std::size_t shownData, Style memberStyle)
        : shownData(shownData), memberStyle(memberStyle) {}

    void header(const Header& header) override;
    void record(const Record& record, std::uint64_t offset, const Tracker& tracker) override;
    void finish(const Tracker&) override {}

  private:
    void line(std::uint64_t offset, const char* what, const std::string& details);
    static std::string fieldsOf(const Record& record, const Tracker& tracker);
    std::string dataOf(const Record& record, const Tracker& tracker) const;

    std::size_t shownData;
    Style memberStyle;
    ByteOrder order;
};

void Listing::header(const Header& header) {
    if (header.order.shortName()) order.testShort = header.order.testShort;
    if (header.order.longName()) order.testLong = header.order.testLong;
    line(0, "header",
         "writer " + quoted(header.writer) + ", floats " + quoted(header.floatFormat) +
             ", shorts " + orderName(header.order.shortName()) + ", longs " +
             orderName(header.order.longName()));
}

void Listing::record(const Record& record, std::uint64_t offset, const Tracker& tracker) {
    std::string details = fieldsOf(record, tracker);
    if (!record.data.empty()) {
        if (!details.empty()) details += ", ";
        details += dataOf(record, tracker);
    }
    line(offset, kindName(record.kind), details);
}

void Listing::line(std::uint64_t offset, const char* what, const std::string& details) {
    std::string text = hexOffset(offset) + "  " + what;
    const std::size_t column = 27; // behind the longest name of a kind
    if (!details.empty()) text.resize(std::max(text.size() + 1, column), ' ');
    print(text + details + '\n');
}

std::string Listing::fieldsOf(const Record& record, const Tracker& tracker) {
    if (record.kind <= NullPointer) return "";
    std::string text = "id " + std::to_string(record.id);
    if (record.kind == TypeDefinition) return text + ", name " + quoted(record.name);
    if (record.kind == NewArray || isArrayBody(record.kind))
        text += ", length " + std::to_string(record.length);
    if (record.kind == ObjectBody) {
        text += ", type " + std::to_string(record.typeId) + ' ' +
                quoted(tracker.typeName(record.typeId)) + ", version " +
                std::to_string(record.version);
    }
    if (record.spare != 0) text += ", second word " + std::to_string(record.spare);
    if (tracker.rootOf() > 0) text += ", root of graph " + std::to_string(tracker.rootOf());
    return text;
}

std::string Listing::dataOf(const Record& record, const Tracker& tracker) const {
    const std::size_t n = record.data.size();
    const std::string_view shown = record.data.substr(0, shownData);
    std::string text = std::to_string(n) + (n == 1 ? " byte" : " bytes");
    if (shown.empty()) return text;
    const Style style = styleOf(tracker.openKind(), record.data, memberStyle);
    return text + ": " + rendered(shown, style, order) + (shown.size() < n ? " ..." : "");
}

} // namespace

std::unique_ptr<Report> makeListing(std::size_t shownData, Style memberStyle) {
    return std::make_unique<Listing>(shownData, memberStyle);
}

} // namespace qzdump
