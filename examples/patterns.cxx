// patterns DIRECTORIES NAMES REGEX TEMPLATE: in every file of the directories
// (separated by colons) whose name matches NAMES, finds the first match of REGEX
// on each line and prints TEMPLATE with its groups filled in:
//
//     patterns /var/log '[a-z]*\.log' '^[^ ]* ([a-z]+) .*:([0-9]+)' '\2 \1'
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "regex/RegExp.h"
#include "util/Path.h"
#include "util/SearchList.h"

namespace {

// What the template makes of the last match. At worst each of its characters
// stands for the whole match.
qzStr substituted(const qzregexp* match, const char* text) {
    const unsigned matched = static_cast<unsigned>(match->endp[0] - match->startp[0]);
    qzStr result(static_cast<unsigned>(std::strlen(text)) * (matched + 1));
    qzregsub(match, text, result.data);
    result.resize(static_cast<unsigned>(std::strlen(result.c_str())));
    return result;
}

bool rewriteFile(const qzPath& path, qzregexp* expression, const char* text) {
    std::ifstream in(path.c_str());
    if (!in) return false;
    qzStr line;
    while (in >> line) {
        if (!qzregexec(expression, line.c_str())) continue;
        std::printf("%s: %s\n", path.leaf().c_str(), substituted(expression, text).c_str());
    }
    return !in.bad();
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        std::fputs("usage: patterns DIRECTORIES NAMES REGEX TEMPLATE\n", stderr);
        return 2;
    }
    qzregexp* const expression = qzregcomp(argv[3]);
    if (!expression) {
        std::fprintf(stderr, "patterns: %s is not a regular expression\n", argv[3]);
        return 2;
    }
    qzSearchList files(argv[1], argv[2]);
    files.qsort();
    int status = 0;
    for (unsigned i = 0; i < files.length(); ++i) {
        if (rewriteFile(files[i], expression, argv[4])) continue;
        std::fprintf(stderr, "patterns: cannot read %s\n", files[i].c_str());
        status = 1;
    }
    std::free(expression);
    return status;
}
