#include "tools/qzwatch/Options.h"

#include <getopt.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "regex/RegEx.h"
#include "util/SearchList.h"

namespace qzwatch {

namespace {

const char usage[] = "usage: qzwatch [-f] [-i SECONDS] [-s STATE] [-t N] [-d DIRS=REGEX]...\n"
                     "               {-p NAME=REGEX | -l NAME=TEXT}... [FILE | FIFO | -]...\n"
                     "       qzwatch -h | --help | --version\n";

const char help[] =
    "\n"
    "Counts the lines that match; without a FILE, those of standard input.\n"
    "\n"
    "  -p NAME=REGEX  count lines that match; group 1 becomes a key counted under NAME\n"
    "  -l NAME=TEXT   count lines that contain the text\n"
    "  -d DIRS=REGEX  also read the files in these directories (a:b) whose names match\n"
    "  -f             read on as files grow, are cut or replaced\n"
    "  -i SECONDS     show progress at this interval\n"
    "  -s STATE       go on from the counts in this file, and save them there\n"
    "  -t N           show the N highest keys of each NAME\n"
    "\n"
    "Exit status: 0; 1 if something could not be read or saved; 2 if nothing was begun.\n";

// 0, or why the path cannot be read.
int unreadable(const char* path, bool isDirectory) {
    const bool isInput = !std::strcmp(path, "-") && !isDirectory;
    struct stat is;
    if ((isInput ? fstat(STDIN_FILENO, &is) : stat(path, &is)) != 0) return errno;
    if (S_ISDIR(is.st_mode) != isDirectory) return isDirectory ? ENOTDIR : EISDIR;
    return isInput || access(path, R_OK) == 0 ? 0 : errno;
}

bool isFile(const char* path) {
    struct stat is;
    return stat(path, &is) == 0 && S_ISREG(is.st_mode);
}

} // namespace

bool Options::refuse(const qzStr& name, const char* why) {
    complain(name, why);
    status = Refused;
    return false;
}

bool Options::misuse(const char* why) {
    if (why) std::fprintf(stderr, "qzwatch: %s\n", why);
    std::fputs(usage, stderr);
    status = Refused;
    return false;
}

// The element of the command line is a long option, or has the short one in it.
bool Options::refuseOption(const char* element, bool isUnknown) {
    const bool isLong = !std::strncmp(element, "--", 2);
    qzStr option(isLong ? element : "-");
    if (!isLong) option.append(static_cast<char>(optopt));
    complain(option, isUnknown ? "no such option" : "an argument is missing");
    return misuse(nullptr);
}

bool Options::read(int argc, char** argv) {
    static const option known[] = {
        {"help", no_argument, nullptr, 'h'}, {"version", no_argument, nullptr, 'V'}, {}};
    bool directories = false;
    opterr = 0; // its messages do not escape what they quote
    for (int c; (c = getopt_long(argc, argv, ":p:l:d:fi:s:t:h", known, nullptr)) != -1;) {
        if (c == '?' || c == ':') return refuseOption(argv[optind - 1], c == '?');
        directories |= c == 'd';
        if (!take(c, optarg)) return false;
    }
    if (names.length() == 0) return misuse("nothing to count: -p or -l is needed");
    for (int i = optind; i < argc; ++i)
        if (!takePath(argv[i])) return false;
    return optind < argc || directories || takePath("-");
}

bool Options::take(int option, const char* argument) {
    char* end = nullptr;
    const bool isDigits = argument && !argument[std::strspn(argument, "0123456789")];
    switch (option) {
    case 'p':
    case 'l':
        return takePattern(argument, option == 'l');
    case 'd':
        return takeDirectories(argument);
    case 'f':
        return follow = true;
    case 'i':
        interval = std::strtof(argument, &end);
        return (!*end && interval >= 0.001f && interval <= 1e6f) ||
               misuse("-i takes a number of seconds from 0.001 to 1000000");
    case 's':
        statePath = argument;
        return statePath.length() > 0 || misuse("-s takes the name of a file");
    case 't':
        highest = static_cast<unsigned>(std::strtoul(argument, nullptr, 10));
        return (isDigits && highest >= 1 && highest <= 1000000) ||
               misuse("-t takes a number from 1 to 1000000");
    case 'h':
        std::printf("%s%s", usage, help);
        return false;
    default:
        std::puts("qzwatch " QZ_VERSION);
        return false;
    }
}

bool Options::takePattern(const char* argument, bool isLiteral) {
    const char* const text = std::strchr(argument, '=');
    if (!text || text == argument) return misuse("-p and -l take NAME=PATTERN");
    const qzStr name(argument, static_cast<unsigned>(text - argument));
    if (isLiteral && std::strchr(text, '\n')) return refuse(name, "a line holds no newline");
    if (!isLiteral && !qzRegEx(text + 1).isValid()) {
        return refuse(name, "the regular expression does not compile");
    }
    names.append(name);
    texts.append(text + 1);
    literal.append(isLiteral);
    return true;
}

bool Options::takeDirectories(const char* argument) {
    const char* const regex = std::strchr(argument, '=');
    if (!regex || regex == argument) return misuse("-d takes DIRS=REGEX");
    if (!qzRegEx(regex + 1).isValid()) {
        return refuse(argument, "the regular expression does not compile");
    }
    const qzStr list(argument, static_cast<unsigned>(regex - argument));
    qzStr directories;
    for (unsigned at = 0; at < list.length();) {
        const qzStr directory = list.token(at, ':');
        if (directory.length() == 0) continue;
        const int error = unreadable(directory.c_str(), true);
        if (error) return refuse(directory, std::strerror(error));
        directories.append(directory | ":");
    }
    if (directories.length() == 0) return misuse("-d takes DIRS=REGEX");
    directories.resize(directories.length() - 1);
    const qzSearchList found(directories.c_str(), regex + 1);
    for (unsigned i = 0; i < found.length(); ++i)
        if (isFile(found[i].c_str())) paths.append(found[i]);
    return true;
}

bool Options::takePath(const char* path) {
    if (const int error = unreadable(path, false)) return refuse(path, std::strerror(error));
    if (!std::strcmp(path, "-") && paths.find(path) >= 0) return misuse("- is given twice");
    paths.append(path);
    return true;
}

} // namespace qzwatch
