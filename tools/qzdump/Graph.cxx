#include "tools/qzdump/Report.h"

namespace qzdump {

namespace {

// Within the quotes of a label a backslash begins an escape, and an ampersand a
// named character.
std::string labelText(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '"' || c == '\\') result += '\\';
        result += c;
        if (c == '&') result += "amp;";
    }
    return result;
}

std::string nodeName(std::uint32_t id) { return 'n' + std::to_string(id); }

class Graph : public Report {
  public:
    void header(const Header&) override { print("digraph stream {\n    node [shape=box];\n"); }
    void record(const Record& record, std::uint64_t offset, const Tracker& tracker) override;
    void finish(const Tracker& tracker) override;

  private:
    static void node(std::uint32_t id, const std::string& label, const char* attributes);
    static void edge(std::uint32_t from, std::uint32_t to, const char* attributes);
    static void arrayNode(const Record& record);
};

void Graph::record(const Record& record, std::uint64_t, const Tracker& tracker) {
    switch (record.kind) {
    case ObjectBody:
        node(record.id, quoted(tracker.typeName(record.typeId)),
             tracker.rootOf() > 0 ? ", peripheries=2" : "");
        break;
    case NewPart:
        node(record.id, "part", ", style=dashed");
        [[fallthrough]];
    case KnownPart:
        edge(tracker.openId(), record.id, " [style=dashed]");
        break;
    case NewArray:
    case KnownArray:
    case NewObject:
    case KnownObject:
        if (record.id != 0) edge(tracker.openId(), record.id, "");
        break;
    default:
        if (isArrayBody(record.kind)) arrayNode(record);
    }
}

void Graph::finish(const Tracker& tracker) {
    for (const std::uint32_t id : tracker.missing())
        node(id, "missing", ", color=red");
    print("}\n");
}

void Graph::node(std::uint32_t id, const std::string& label, const char* attributes) {
    print("    " + nodeName(id) + " [label=\"" + std::to_string(id) + ' ' + labelText(label) + '"' +
          attributes + "];\n");
}

void Graph::edge(std::uint32_t from, std::uint32_t to, const char* attributes) {
    print("    " + nodeName(from) + " -> " + nodeName(to) + attributes + ";\n");
}

void Graph::arrayNode(const Record& record) {
    const std::size_t shownText = 24;
    std::string label =
        std::to_string(record.length / elementSize(record.kind)) + ' ' + kindName(record.kind);
    if (record.kind == qzBOT_Chars && looksLikeText(record.data)) {
        label += ' ' + quoted(record.data.substr(0, shownText));
        if (record.data.size() > shownText) label += " ...";
    }
    node(record.id, label, ", style=rounded");
}

} // namespace

std::unique_ptr<Report> makeGraph() { return std::make_unique<Graph>(); }

} // namespace qzdump
