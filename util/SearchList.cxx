#include "util/SearchList.h"

#include <utility>

#include <dirent.h>

#include "regex/RegEx.h"

static_assert(sizeof(dirent::d_ino) == 8,
              "readdir() fails where inode numbers need 64 bits: set _FILE_OFFSET_BITS=64");

namespace {

// Whether there was anything to change.
bool change(qzStr& stored, const char* value) {
    qzStr wanted(value);
    if (stored == wanted) return false;
    stored = std::move(wanted);
    return true;
}

bool isWhole(const char* name, const qzRegEx& pattern) {
    const unsigned length = static_cast<unsigned>(std::strlen(name));
    int start, end;
    pattern.bracketBuffer(name, length, start, end);
    return start == 0 && static_cast<unsigned>(end) == length;
}

} // namespace

qzSearchList::qzSearchList(const char* searchList, const char* regexp)
    : expression(regexp), directories(searchList) {
    if (directories.length()) recompute();
}

qzSearchList::~qzSearchList() = default;

void qzSearchList::searchList(const char* searchList) {
    if (change(directories, searchList)) recompute();
}

void qzSearchList::regexp(const char* regexp) {
    if (change(expression, regexp)) recompute();
}

void qzSearchList::searchCriteria(const char* searchList, const char* regexp) {
    const bool newDirectories = change(directories, searchList);
    const bool newExpression = change(expression, regexp);
    if (newDirectories || newExpression) recompute();
}

void qzSearchList::recompute() {
    resize(0);
    const qzRegEx pattern(expression);
    for (unsigned pos = 0; pos < directories.length();)
        appendMatches(directories.token(pos, ':'), pattern);
}

void qzSearchList::appendMatches(const qzStr& directory, const qzRegEx& pattern) {
    DIR* const entries = opendir(directory.c_str());
    if (!entries) return;
    const qzStr prefix(directory | "/");
    while (const dirent* entry = readdir(entries)) {
        if (isWhole(entry->d_name, pattern)) append(qzStr(prefix | entry->d_name));
    }
    closedir(entries);
}
