#include "tools/qzwatch/State.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "tools/qzwatch/Complaint.h"
#include "tools/qzwatch/Counter.h"
#include "xdr/BinaryGraphWriter.h"
#include "xdr/StdioStream.h"

namespace qzwatch {

namespace {

// A transcriber of a stream of its own.
struct Transcription {
    using Make = qzTranscriber* (*)(qzStream*);

    Transcription(FILE* file, qzStream::qzStreamType type, Make make)
        : stream(new qzStdioStream(file, type)) {
        stream->addRef();
        transcriber = make(stream);
    }
    ~Transcription() {
        delete transcriber;
        stream->delRef();
    }
    qzStream* const stream;
    qzTranscriber* transcriber; // null when the header cannot be read or written
};

bool readGraphs(FILE* file, qzVoidPtrArray& counters) {
    const Transcription from(file, qzStream::qzST_Read, qzTranscriber::getReader);
    if (!from.transcriber) return false;
    int following;
    do {
        Counter::lastRead = nullptr;
        const void* const root = from.transcriber->readObject(Counter_type);
        if (!root || root != Counter::lastRead) return false;
        following = Counter::lastRead->getFollowing();
        counters.append(Counter::lastRead);
    } while (following > 0);
    char more;
    return !from.stream->getBytes(&more, 1);
}

// The keys are the counters' own once the reader has gone.
bool readCounters(FILE* file, qzVoidPtrArray& counters) {
    bool good = readGraphs(file, counters);
    for (unsigned i = 0; good && i < counters.length(); ++i) {
        auto* const counter = static_cast<Counter*>(counters[i]);
        const unsigned following = counters.length() - i - 1;
        good = counter->unpack() && counter->getFollowing() == static_cast<int>(following);
    }
    return good;
}

// 0, or the error.
int writeCounters(FILE* file, const qzVoidPtrArray& counters) {
    errno = 0;
    const Transcription to(file, qzStream::qzST_Write, qzTranscriber::getWriter);
    bool good = to.transcriber;
    for (unsigned i = 0; good && i < counters.length(); ++i) {
        auto* const counter = static_cast<Counter*>(counters[i]);
        counter->pack(static_cast<int>(counters.length() - i - 1));
        good = to.transcriber->writeObject(counter, counter);
    }
    if (good && std::fflush(file) == 0 && fsync(fileno(file)) == 0) return 0;
    return errno ? errno : EIO;
}

// What a path leads to through symbolic links; itself where there is nothing yet.
qzPath resolved(const qzPath& path) {
    char* const real = realpath(path.c_str(), nullptr);
    const qzPath result(real ? real : path.c_str());
    std::free(real);
    return result;
}

// That of the file which is replaced, or of one that open() makes.
mode_t modeFor(const qzPath& file) {
    struct stat old;
    if (stat(file.c_str(), &old) == 0) return old.st_mode & 0777;
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

// Whether reading succeeds. Of a broken stream a reader ends the process with a
// message: that process is a child, whose last words nobody needs.
bool canBeRead(const qzPath& path) {
    const pid_t child = fork();
    if (child == 0) {
        const rlimit none = {0, 0};
        setrlimit(RLIMIT_CORE, &none);
        if (!std::freopen("/dev/null", "w", stderr)) _exit(1);
        FILE* const file = std::fopen(path.c_str(), "rb");
        qzVoidPtrArray counters;
        _exit(file && readCounters(file, counters) ? 0 : 1);
    }
    int status = -1;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return status == 0;
}

bool complainOf(const qzPath& path, int error) {
    complain(path, std::strerror(error));
    return false;
}

} // namespace

bool State::load(qzVoidPtrArray& counters) const {
    struct stat is;
    if (stat(path.c_str(), &is) != 0) {
        return errno == ENOENT ? canBeMade() : complainOf(path, errno);
    }
    if (S_ISDIR(is.st_mode)) return complainOf(path, EISDIR);
    FILE* const file = S_ISREG(is.st_mode) ? std::fopen(path.c_str(), "rb") : nullptr;
    if (!file && S_ISREG(is.st_mode)) return complainOf(path, errno);
    if (file && canBeRead(path) && readCounters(file, counters)) return true;
    complain(path, "not a state file, or broken; nothing was read or changed");
    return false;
}

// So that a long run does not find out at its end.
bool State::canBeMade() const {
    const qzPath directory = path.next(0, '/') < path.length() ? path.directory() : qzPath(".");
    return access(directory.length() ? directory.c_str() : "/", W_OK) == 0 ||
           complainOf(path, errno);
}

bool State::save(const qzVoidPtrArray& counters) const {
    const qzPath file = resolved(path);
    qzPath fresh(file | ".XXXXXX");
    const int descriptor = mkostemp(fresh.data, O_CLOEXEC);
    if (descriptor < 0) return complainOf(path, errno);
    int error = fchmod(descriptor, modeFor(file)) == 0 ? 0 : errno;
    const int writeError = writeCounters(fdopen(descriptor, "wb"), counters);
    if (!error) error = writeError;
    if (!error && std::rename(fresh.c_str(), file.c_str()) != 0) error = errno;
    if (!error) return true;
    unlink(fresh.c_str());
    return complainOf(path, error);
}

} // namespace qzwatch
