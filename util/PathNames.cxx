#include "util/PathNames.h"

#include <cstdlib>
#include <cstring>

#include <pwd.h>
#include <unistd.h>

#include "util/Str.h"
#include "util/detail/PathParts.h"
#include "util/detail/RawMemory.h"

namespace {

// Text that is put together in a block of a given size.
class TextBlock {
  public:
    explicit TextBlock(std::size_t size)
        : text(static_cast<char*>(qzRawAlloc(size))), used(0), size(size) {}
    TextBlock(const TextBlock&) = delete;
    TextBlock& operator=(const TextBlock&) = delete;
    ~TextBlock() { qzRawFree(text); }

    // False, changing nothing, when s and a terminator do not fit.
    bool append(const char* s, std::size_t length) {
        if (length >= size - used) return false;
        qzRawMove(text + used, s, length);
        used += length;
        text[used] = 0;
        return true;
    }
    bool append(const char* s) { return append(s, std::strlen(s)); }

    char* release() {
        char* const block = text;
        text = nullptr;
        return block;
    }

  private:
    char* text;
    std::size_t used; // without the terminator
    std::size_t size;
};

char* join(const char* a, const char* b) {
    TextBlock both(std::strlen(a) + std::strlen(b) + 1);
    both.append(a);
    both.append(b);
    return both.release();
}

// Null for an unknown user; no name is whoever runs the program.
const char* homeDirectory(const char* name, std::size_t length) {
    if (length == 0) {
        const char* home = std::getenv("HOME");
        return home ? home : "";
    }
    const passwd* user = getpwnam(qzStr(name, static_cast<unsigned>(length)).c_str());
    return user ? user->pw_dir : nullptr;
}

const char* variable(const char* name, std::size_t length) {
    if (length == 0) return nullptr;
    return std::getenv(qzStr(name, static_cast<unsigned>(length)).c_str());
}

} // namespace

qzPathPart qzLeafPart(const char* path) {
    const char* end = path + std::strlen(path);
    while (end > path && end[-1] == '/')
        --end;
    const char* begin = end;
    while (begin > path && begin[-1] != '/')
        --begin;
    return {begin, static_cast<std::size_t>(end - begin)};
}

qzPathPart qzDirectoryPart(const char* path) {
    const char* end = qzLeafPart(path).begin;
    if (end == path) return {*path == '/' ? "/" : ".", 1};
    while (end > path && end[-1] == '/')
        --end;
    return {path, static_cast<std::size_t>(end - path)};
}

char* pathbasename(const char* path) {
    if (!path) return nullptr;
    const qzPathPart leaf = qzLeafPart(path);
    TextBlock name(leaf.length + 1);
    name.append(leaf.begin, leaf.length);
    return name.release();
}

char* pathdirname(const char* path) {
    if (!path) return nullptr;
    const qzPathPart directory = qzDirectoryPart(path);
    char* name = static_cast<char*>(qzRawTryAlloc(directory.length + 1));
    if (!name) return nullptr;
    qzRawMove(name, directory.begin, directory.length);
    name[directory.length] = 0;
    return name;
}

char* pathexpandtilde(const char* path) {
    if (!path) return nullptr;
    if (*path != '~') return join(path, "");
    const char* const name = path + 1;
    const std::size_t length = std::strcspn(name, "/");
    const char* const home = homeDirectory(name, length);
    return home ? join(home, name + length) : join(path, "");
}

char* symbolicLinkExtendedName(const char* path, unsigned int size) {
    if (!path || size == 0) return nullptr;
    char* link = static_cast<char*>(qzRawAlloc(size));
    const ssize_t length = readlink(path, link, size - 1);
    if (length < 1) {
        qzRawFree(link);
        return nullptr;
    }
    link[length] = 0;
    return link;
}

char* environmentVariableExtendedName(const char* path, unsigned int size) {
    if (!path) return nullptr;
    TextBlock result(size);
    const char* rest = path;
    bool atEnd = false;
    while (const char* dollar = atEnd ? nullptr : std::strchr(rest, '$')) {
        const char* const name = dollar + 1;
        std::size_t length = std::strcspn(name, "/ ");
        atEnd = name[length] == 0;
        if (atEnd && length) --length;
        const char* const value = variable(name, length);
        if (!value) return nullptr;
        if (!result.append(rest, static_cast<std::size_t>(dollar - rest))) return nullptr;
        if (!result.append(value)) return nullptr;
        rest = name + length;
    }
    return result.append(rest) ? result.release() : nullptr;
}
