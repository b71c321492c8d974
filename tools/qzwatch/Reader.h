// Reader: reads lines from one open file, FIFO or terminal.
//
// Outputs "lines" (see Lines.h); "left", a void value whenever it has left the
// executive: it has come to its end, or sleeps; and "full", a void value when the
// beginnings of lines that all readers hold have become too much.
//
// The executive serves a hundred descriptors. A reader that has nothing to read for
// now sleeps: its file stays open under a number above those, and it is asked from
// time to time whether there is more.
//
// A line is held in memory as a whole; one of more than 64 MB is taken as several.
// The end of the input ends a line, too.
#ifndef QZ_TOOLS_QZWATCH_READER_H
#define QZ_TOOLS_QZWATCH_READER_H

#include <sys/types.h>

#include "event/SelectHandler.h"
#include "util/Path.h"

namespace qzwatch {

class Reader : public qzSelectHandler {
  public:
    // Opens the path, "-" being standard input; check getOpenError(). follow: to read on
    // as a file grows, is cut or replaced, and a FIFO gets another writer.
    Reader(const qzPath& path, bool follow);
    ~Reader() override;
    const char* className() const override { return "Reader"; }
    void handleRead() override;

    int getOpenError() const { return openError; } // 0 for none
    bool isOpen() const { return state != Ended; }
    bool isAwake() const { return state == Awake; }
    bool isFile() const { return file; } // and so has an end

    void sleep();
    // Of one that sleeps: whether waking it makes sense; false from wake() when
    // the executive has no place.
    bool hasNews();
    bool wake();
    // As the end of the input does.
    void finish();

    // Takes what there is of a line as a whole one.
    void completeLine();
    unsigned getHeld() const { return text.length(); }
    static bool holdTooMuch();

    // Whether any path has failed.
    static bool anyFailed;

  private:
    int openPath() const;
    bool isReplaced() const;
    bool reopen();
    void atEnd();
    void fail();
    void keepFrom(unsigned end);

    const qzPath path;
    const bool follow;
    int openError = 0;
    bool file = false;
    bool fifo = false;
    enum { Awake, Asleep, Ended } state = Ended;
    off_t position = 0; // in the file
    qzStr text;         // the beginning of a line, to be completed
    qzOutputChannel* const lines;
    qzOutputChannel* const left;
    qzOutputChannel* const full;

    static unsigned held; // bytes, in the texts of all readers
};

} // namespace qzwatch

#endif
