// qzdump: shows streams of the binary object format; qzdump.1 is the manual page.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>

#include <getopt.h>

#include "tools/qzdump/Report.h"
#include "tools/qzdump/Source.h"

namespace qzdump {

namespace {

enum Status { Good = 0, Broken = 1, Misuse = 2 };

const char usage[] = "usage: qzdump [--dot | --stats] [--fields=4|8] [--data=N]\n"
                     "              [--members=hex|text|shorts|longs] FILE\n"
                     "       qzdump --help | --version\n";

const char help[] =
    "\n"
    "Shows a stream of the binary object format; FILE may be - for standard input.\n"
    "\n"
    "  --dot         the graph of objects and arrays, for Graphviz\n"
    "  --stats       records and bytes by type\n"
    "  --fields=4|8  bytes of the fields of pointer records; guessed by default\n"
    "  --data=N      show at most N bytes of data per record (32)\n"
    "  --members=S   show the data of objects as hex (default), text, shorts or longs\n"
    "\n"
    "Exit status: 0 for a good stream, 1 for a broken or unreadable one, 2 for misuse.\n";

struct Options {
    enum { List, Dot, Stats } output = List;
    std::optional<FieldForm> form;
    std::size_t shownData = 32;
    Style memberStyle = Style::Hex;
    const char* path = nullptr;
};

// The command line

bool setForm(const char* text, Options& options) {
    const bool four = !std::strcmp(text, "4");
    options.form = four ? FieldForm::OneWord : FieldForm::TwoWords;
    return four || !std::strcmp(text, "8");
}

bool setShownData(const char* text, Options& options) {
    const std::size_t digits = std::strspn(text, "0123456789");
    options.shownData = std::strtoul(text, nullptr, 10);
    return digits > 0 && !text[digits];
}

bool setMemberStyle(const char* text, Options& options) {
    static const struct {
        const char* name;
        Style style;
    } styles[] = {{"hex", Style::Hex},
                  {"text", Style::Text},
                  {"shorts", Style::Shorts},
                  {"longs", Style::Longs}};
    for (const auto& known : styles) {
        if (std::strcmp(text, known.name)) continue;
        options.memberStyle = known.style;
        return true;
    }
    return false;
}

// The element of the command line is a long option, or has a short one in it.
void refuseOption(const char* element, bool isUnknown) {
    const bool isLong = !std::strncmp(element, "--", 2);
    const std::string option = isLong ? element : std::string("-") + static_cast<char>(optopt);
    std::fprintf(stderr, "qzdump: %s: %s\n", printable(option).c_str(),
                 isUnknown ? "no such option" : "an argument is missing");
}

// A status with which to end at once, or nothing.
std::optional<Status> readOptions(int argc, char** argv, Options& options) {
    static const option known[] = {
        {"dot", no_argument, nullptr, 'd'},           {"stats", no_argument, nullptr, 's'},
        {"fields", required_argument, nullptr, 'f'},  {"data", required_argument, nullptr, 'n'},
        {"members", required_argument, nullptr, 'm'}, {"help", no_argument, nullptr, 'h'},
        {"version", no_argument, nullptr, 'v'},       {}};
    bool good = true;
    opterr = 0; // its messages do not escape what they quote
    for (int c; good && (c = getopt_long(argc, argv, ":", known, nullptr)) != -1;) {
        switch (c) {
        case 'd':
        case 's':
            good = options.output == Options::List;
            options.output = c == 'd' ? Options::Dot : Options::Stats;
            break;
        case 'f':
            good = setForm(optarg, options);
            break;
        case 'n':
            good = setShownData(optarg, options);
            break;
        case 'm':
            good = setMemberStyle(optarg, options);
            break;
        case 'h':
            std::printf("%s%s", usage, help);
            return Good;
        case 'v':
            std::puts("qzdump " QZ_VERSION);
            return Good;
        default:
            refuseOption(argv[optind - 1], c == '?');
            good = false;
        }
    }
    if (!good || argc - optind != 1) {
        std::fputs(usage, stderr);
        return Misuse;
    }
    options.path = argv[optind];
    return std::nullopt;
}

std::unique_ptr<Report> makeReport(const Options& options) {
    switch (options.output) {
    case Options::Dot:
        return makeGraph();
    case Options::Stats:
        return makeStatistics();
    default:
        return makeListing(options.shownData, options.memberStyle);
    }
}

// The stream

class Dump {
  public:
    Dump(Source& source, const Options& options)
        : source(source), options(options), form(options.form), report(makeReport(options)) {}

    Status run();

  private:
    bool header();
    bool nextRecord();
    bool unreadable();
    void complain(const std::string& why);

    Source& source;
    const Options& options;
    std::optional<FieldForm> form;
    std::unique_ptr<Report> report;
    Tracker tracker;
    unsigned complaints = 0;
};

Status Dump::run() {
    if (header()) {
        while (nextRecord()) {
        }
        report->finish(tracker);
    }
    return complaints > 0 ? Broken : Good;
}

// False where no records can be expected to follow.
bool Dump::header() {
    Header header;
    std::string why = parseHeader(source.peek(maxHeader), header);
    if (unreadable()) return false;
    if (why.empty() && header.writer != "qzBinaryWriter") {
        why = "not a stream of the binary object format: its writer is " + quoted(header.writer);
    }
    if (!why.empty()) {
        complain(why);
        return false;
    }
    report->header(header);
    if (header.floatFormat != "ieee") {
        complain("no reader knows the float format " + quoted(header.floatFormat));
    }
    if (!header.order.shortName()) complain("no reader knows the byte order of the shorts");
    if (!header.order.longName()) complain("no reader knows the byte order of the longs");
    source.skip(header.size);
    return true;
}

// False where the stream ends or does not tell where the next record begins.
bool Dump::nextRecord() {
    std::string_view bytes = source.peek(maxRecord);
    if (unreadable()) return false;
    if (bytes.empty()) {
        complain(tracker.finish());
        return false;
    }
    if (!form && isReference(bytes.front() & kindBits)) {
        bytes = source.peek(Source::windowSize);
        form = guessForm(bytes);
    }
    Record record;
    const std::string broken = parseRecord(bytes, form.value_or(FieldForm::OneWord), record);
    if (!broken.empty()) {
        complain(broken);
        return false;
    }
    const std::string senseless = tracker.add(record);
    report->record(record, source.offset(), tracker);
    complain(senseless);
    source.skip(record.size);
    return true;
}

bool Dump::unreadable() {
    if (!source.error()) return false;
    complain(std::strerror(source.error()));
    return true;
}

// Of what is at hand; an empty text is none. One fault mostly causes others: after
// the first few they are only counted.
void Dump::complain(const std::string& why) {
    const unsigned shown = 10;
    if (why.empty() || ++complaints > shown) return;
    std::fflush(stdout); // before what is said of it
    std::fprintf(stderr, "qzdump: %s: offset %s: %s\n", printable(options.path).c_str(),
                 hexOffset(source.offset()).c_str(), why.c_str());
}

Status dump(const Options& options) {
    const bool fromStdin = !std::strcmp(options.path, "-");
    std::FILE* const file = fromStdin ? stdin : std::fopen(options.path, "rb");
    if (!file) {
        std::fprintf(stderr, "qzdump: %s: %s\n", printable(options.path).c_str(),
                     std::strerror(errno));
        return Broken;
    }
    Source source(file);
    const Status status = Dump(source, options).run();
    if (!fromStdin) std::fclose(file);
    return status;
}

// Output that did not arrive must not look like a good stream.
Status flushed(Status status) {
    if (!std::fflush(stdout) && !std::ferror(stdout)) return status;
    std::fprintf(stderr, "qzdump: standard output: %s\n", std::strerror(errno));
    return Broken;
}

} // namespace

} // namespace qzdump

int main(int argc, char** argv) {
    using namespace qzdump;
    Options options;
    const std::optional<Status> early = readOptions(argc, argv, options);
    return flushed(early ? *early : dump(options));
}
