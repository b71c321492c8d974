#include "tools/qzwatch/Inputs.h"

#include <cerrno>
#include <cstring>

#include "event/DataTypes.h"
#include "tools/qzwatch/Complaint.h"
#include "tools/qzwatch/Reader.h"

namespace qzwatch {

namespace {

const unsigned mostAwake = 90; // the executive serves a hundred, also other descriptors

} // namespace

Inputs::Inputs(const qzStrArray& paths, bool follow)
    : paths(paths), follow(follow), ended(addOutput("ended", qzDT_void)) {
    addInput("sweep", qzDT_void, this, reinterpret_cast<void (*)()>(sweep), 1);
    addInput("relieve", qzDT_void, this, reinterpret_cast<void (*)()>(relieve), 1);
    addInput("look", qzDT_void, this, reinterpret_cast<void (*)()>(look), 1);
}

Inputs::~Inputs() {
    for (unsigned i = 0; i < readers.length(); ++i)
        delete &reader(i);
}

bool Inputs::needLooks() const { return follow || paths.length() > mostAwake; }

void Inputs::start() { dropEnded(); }

void Inputs::finish() {
    next = paths.length();
    for (unsigned i = 0; i < readers.length(); ++i)
        reader(i).finish();
}

unsigned Inputs::awake() const {
    unsigned n = 0;
    for (unsigned i = 0; i < readers.length(); ++i)
        n += reader(i).isAwake();
    return n;
}

// False to try again when a reader has left.
bool Inputs::open(const qzStr& path) {
    auto* const opened = new Reader(path, follow);
    if (const int error = opened->getOpenError()) {
        delete opened;
        if (hasRoomLater(error)) return false;
        complain(path, std::strerror(error));
        Reader::anyFailed = true;
        return true;
    }
    readers.append(opened);
    opened->connect("left", this, "sweep");
    opened->connect("full", this, "relieve");
    for (unsigned i = 0; i < receivers.length(); ++i)
        opened->connect("lines", static_cast<qzObj*>(receivers[i]), "lines");
    return true;
}

// Whether descriptors are short, and a reader may come to its end: one that follows
// a file sleeps and keeps its own.
bool Inputs::hasRoomLater(int error) const {
    const bool isShort = error == EMFILE || error == ENFILE;
    return isShort && (follow ? awake() > 0 : readers.length() > 0);
}

// The lines of one that has ended are on their way: they do not need it.
void Inputs::dropEnded() {
    for (unsigned i = readers.length(); i-- > 0;) {
        if (reader(i).isOpen()) continue;
        delete &reader(i);
        readers.remove(i, 1);
    }
    while (awake() < mostAwake && next < paths.length() && open(paths[next]))
        ++next;
    if (readers.length() == 0) sendVoid(ended, qzSF_Queued);
}

void Inputs::completeLongest() {
    while (Reader::holdTooMuch()) {
        Reader* longest = &reader(0);
        for (unsigned i = 1; i < readers.length(); ++i)
            if (reader(i).getHeld() > longest->getHeld()) longest = &reader(i);
        longest->completeLine();
    }
}

void Inputs::lookForNews() {
    bool waiting = next < paths.length();
    unsigned n = awake();
    for (unsigned i = 0; i < readers.length(); ++i) {
        if (!reader(i).isOpen() || reader(i).isAwake() || !reader(i).hasNews()) continue;
        if (n < mostAwake && reader(i).wake()) {
            ++n;
        } else {
            waiting = true;
        }
    }
    if (waiting) takeTurns();
}

// What may have no end makes room for the others and goes behind them.
void Inputs::takeTurns() {
    for (unsigned i = readers.length(); i-- > 0;) {
        Reader* const yielding = &reader(i);
        if (!yielding->isAwake() || yielding->isFile()) continue;
        yielding->sleep();
        readers.remove(i, 1);
        readers.append(yielding);
    }
}

} // namespace qzwatch
