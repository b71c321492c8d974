// qzFanOut: the walk of one send over the connections of an output channel.
//
// It goes over the connections that stood when it began, in their order, and
// stays right when receivers connect, disconnect, send on the same output or
// destroy it: the channel's removals adjust every walk that is under way. One
// that was removed is not visited, also if it has been made again since.
//
// Cost: lives on the stack; nothing is copied or allocated.
#ifndef QZ_EVENT_DETAIL_FANOUT_H
#define QZ_EVENT_DETAIL_FANOUT_H

#include "event/OutputChannel.h"

class qzFanOut {
  public:
    explicit qzFanOut(const qzOutputChannel& output)
        : output(output), position(0), end(output.getNumberOfConnections()), standing(true),
          outer(innermost) {
        innermost = this;
    }
    ~qzFanOut() { innermost = outer; }
    qzFanOut(const qzFanOut&) = delete;
    qzFanOut& operator=(const qzFanOut&) = delete;

    bool notDone() const { return position < end; }
    // The entry whose turn it is; not to be asked for once it has been removed.
    qzInputChannel* entry() const { return output[position]; }
    // Whether that entry is still connected.
    bool stands() const { return standing; }
    void advance() {
        if (standing) ++position;
        standing = true;
    }

    // For output channels: the entry at the index has been taken out; the channel
    // is being destroyed.
    static void removed(const qzOutputChannel* from, unsigned index);
    static void ended(const qzOutputChannel* gone);

  private:
    void skip(unsigned index);

    const qzOutputChannel& output;
    unsigned position; // of the entry, or of the following one if it was removed
    unsigned end;
    bool standing;
    qzFanOut* const outer;

    static qzFanOut* innermost;
};

#endif
