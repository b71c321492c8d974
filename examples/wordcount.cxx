// wordcount [FILE...]: the twenty most frequent words of the files, with counts.
//
// Words are what stands between blanks, tabs and the like. Without arguments the
// text is the machine's package database.
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "util/Str.h"
#include "util/StrArray.h"
#include "util/StrStrDictionary.h"
#include "util/StrStrDictionaryIter.h"

namespace {

const char* const blanks = " \t\r\f\v";
const unsigned shown = 20;

// Counts live in the dictionary as text, as everything in it does.
void count(qzStrStrDictionary& counts, const qzStr& word) {
    qzStr& known = counts[word];
    known = qzStr(std::atoi(known.c_str()) + 1);
}

bool countFile(qzStrStrDictionary& counts, const char* path) {
    std::ifstream in(path);
    if (!in) return false;
    qzStr line;
    while (in >> line) {
        for (unsigned pos = line.skip(0, blanks); pos < line.length();) {
            count(counts, line.token(pos, blanks));
        }
    }
    return !in.bad(); // a directory opens, but cannot be read
}

// One line a word, written so that the order of the texts is the order wanted:
// the more frequent first, words in the order of their bytes among equals.
qzStrArray ranking(qzStrStrDictionary& counts) {
    qzStrArray lines;
    for (qzStrStrDictionaryIter i(counts); i.notDone(); ++i) {
        const int n = std::atoi(i.getValue()->c_str());
        qzStr line;
        line.format("%010d", 2147483647 - n);
        line.append(*i.getKey());
        lines.append(line);
    }
    lines.qsort();
    return lines;
}

} // namespace

int main(int argc, char** argv) {
    const char* const packageDatabase = "/var/lib/dpkg/status";
    qzStrStrDictionary counts(100003);
    for (int i = 1; i < argc || i == 1; ++i) {
        const char* path = i < argc ? argv[i] : packageDatabase;
        if (!countFile(counts, path)) {
            std::fprintf(stderr, "wordcount: cannot read %s\n", path);
            return 1;
        }
    }
    const qzStrArray lines = ranking(counts);
    for (unsigned i = 0; i < shown && i < lines.length(); ++i) {
        const qzStr word = lines[i].extract(10, lines[i].length() - 10);
        std::printf("%7s %s\n", counts.find(word)->c_str(), word.c_str());
    }
    return 0;
}
