#include "tools/qzwatch/Reader.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "event/DataTypes.h"
#include "event/Exec.h"
#include "tools/qzwatch/Complaint.h"
#include "tools/qzwatch/Lines.h"

namespace qzwatch {

bool Reader::anyFailed = false;
unsigned Reader::held = 0;

namespace {

const unsigned blockSize = 65536; // small enough for all matchers to find it in the cache
const unsigned longestLine = 64 << 20;
const unsigned mostHeld = 256 << 20;
const int served = 100; // the executive takes descriptors below

} // namespace

Reader::Reader(const qzPath& path, bool follow)
    : path(path), follow(follow), lines(addOutput("lines", linesType)),
      left(addOutput("left", qzDT_void)), full(addOutput("full", qzDT_void)) {
    descriptor = openPath();
    struct stat is;
    if (descriptor < 0 || fstat(descriptor, &is) != 0) {
        openError = errno;
        return;
    }
    file = S_ISREG(is.st_mode);
    fifo = S_ISFIFO(is.st_mode);
    position = file ? lseek(descriptor, 0, SEEK_CUR) : 0;
    if (!wake()) openError = errno;
}

Reader::~Reader() {
    if (state == Awake) qz_theExecutive->removeSelectHandler(this);
}

// Not to wait for a FIFO's writer: select() does that for all of them.
int Reader::openPath() const {
    if (path == "-") return fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0);
    return open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
}

// Reading

void Reader::handleRead() {
    const unsigned kept = text.length();
    text.resize(kept + blockSize);
    const ssize_t n = read(descriptor, text.data + kept, blockSize);
    text.resize(kept + (n > 0 ? static_cast<unsigned>(n) : 0));
    if (n < 0 && (errno == EAGAIN || errno == EINTR)) return;
    if (n < 0) return fail();
    if (n == 0) return atEnd();
    position += n;
    held += static_cast<unsigned>(n);
    if (std::memchr(text.data + kept, '\n', n)) keepFrom(text.nextR(text.length(), '\n'));
    if (text.length() > longestLine) completeLine();
    if (holdTooMuch()) sendVoid(full, qzSF_Queued);
}

// Sends the text up to there, keeping the rest.
void Reader::keepFrom(unsigned end) {
    held -= end;
    qzStr rest = text.tail(text.length() - end);
    text.resize(end);
    sendData(lines, new LinesData(std::move(text)), qzSF_Queued);
    text = std::move(rest);
}

void Reader::completeLine() {
    if (text.length() == 0) return;
    text.append('\n');
    ++held;
    keepFrom(text.length());
}

bool Reader::holdTooMuch() { return held > mostHeld; }

void Reader::atEnd() {
    if (!follow) return finish();
    if (file) return sleep();
    if (!fifo || path == "-" || !reopen()) finish();
}

void Reader::finish() {
    if (state == Ended) return;
    completeLine();
    if (state == Awake) qz_theExecutive->removeSelectHandler(this);
    state = Ended;
    sendVoid(left, qzSF_Queued);
}

void Reader::fail() {
    complain(path, std::strerror(errno));
    anyFailed = true;
    finish();
}

// Sleeping

void Reader::sleep() {
    qz_theExecutive->removeSelectHandler(this);
    state = Asleep;
    const int above = fcntl(descriptor, F_DUPFD_CLOEXEC, served);
    if (above >= 0) {
        close(descriptor);
        descriptor = above;
    }
    sendVoid(left, qzSF_Queued);
}

bool Reader::wake() {
    if (descriptor >= served) {
        const int below = fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
        if (below < 0 || below >= served) {
            if (below >= 0) close(below);
            errno = EMFILE;
            return false;
        }
        close(descriptor);
        descriptor = below;
    }
    state = Awake;
    qz_theExecutive->addSelectHandler(this);
    return true;
}

bool Reader::hasNews() {
    if (!file) {
        pollfd input = {descriptor, POLLIN, 0};
        return poll(&input, 1, 0) > 0;
    }
    // Asked first: what is written to a file until it is renamed is read.
    const bool replaced = isReplaced();
    struct stat is;
    if (fstat(descriptor, &is) != 0 || is.st_size > position) return true;
    if (is.st_size < position) { // cut
        completeLine();
        position = lseek(descriptor, 0, SEEK_SET);
        return is.st_size > 0;
    }
    return replaced && reopen();
}

// A name that is not there may come back.
bool Reader::isReplaced() const {
    struct stat byName, byDescriptor;
    return path != "-" && stat(path.c_str(), &byName) == 0 &&
           fstat(descriptor, &byDescriptor) == 0 &&
           (byName.st_ino != byDescriptor.st_ino || byName.st_dev != byDescriptor.st_dev);
}

// Begins what has the path now, under the same descriptor.
bool Reader::reopen() {
    const int fresh = openPath();
    if (fresh < 0) return false;
    completeLine();
    position = 0;
    const bool done = dup3(fresh, descriptor, O_CLOEXEC) >= 0;
    close(fresh);
    return done;
}

} // namespace qzwatch
