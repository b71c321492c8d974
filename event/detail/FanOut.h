// qzFanOut: the walk of one send over the connections of an output channel.
//
// It goes over the connections that stood when it began, in their order, and
// stays right when receivers connect, disconnect, send on the same output or
// destroy it: the channel's removals adjust every walk that is under way. One
// that was removed is not visited, also if it has been made again since.
//
// The entry whose turn it is stays alive until the walk goes on: a connection holds
// its entry, and a removal leaves it to the walks that stand at it.
//
// Cost: lives on the stack; nothing is copied or allocated, and nothing is counted
//     unless a callback removes the entry whose turn it is.
#ifndef QZ_EVENT_DETAIL_FANOUT_H
#define QZ_EVENT_DETAIL_FANOUT_H

#include "event/OutputChannel.h"

class qzFanOut {
  public:
    explicit qzFanOut(const qzOutputChannel& output)
        : output(output), position(0), end(output.getNumberOfConnections()), removedEntry(nullptr),
          disturbed(false), outer(innermost) {
        innermost = this;
    }
    ~qzFanOut() { innermost = outer; }
    qzFanOut(const qzFanOut&) = delete;
    qzFanOut& operator=(const qzFanOut&) = delete;

    // Calls visit(entry) for each entry that stands when its turn comes. Where the
    // entries are is looked up again only when they have changed: to do it for each
    // costs a third of a send.
    template <class Visit> void forEach(Visit visit) {
        void** entries = firstEntry();
        for (unsigned i = 0; i < end;) {
            position = i;
            visit(static_cast<qzInputChannel*>(entries[i]));
            if (__builtin_expect(disturbed, 0)) {
                i = afterDisturbance();
                entries = firstEntry();
            } else {
                ++i;
            }
        }
    }
    // For visit(): whether its entry is still connected.
    bool stands() const { return !removedEntry; }

    // For output channels: an entry has come; the one at the index, which the caller
    // still holds, has been taken out; the channel is about to be destroyed.
    static void added(const qzOutputChannel* to);
    static void removed(const qzOutputChannel* from, unsigned index, qzInputChannel* entry);
    static void ended(const qzOutputChannel* gone);

  private:
    // Of a channel that still has one at least.
    void** firstEntry() const { return end ? &(*output.connections)[0] : nullptr; }
    unsigned afterDisturbance();
    void skip(unsigned index, qzInputChannel* entry);
    void keep(qzInputChannel* entry);

    const qzOutputChannel& output;
    unsigned position; // of the entry, or of the following one if it was removed
    unsigned end;
    qzInputChannel* removedEntry; // the entry, held, if it was removed
    bool disturbed;               // the channel's entries are no longer what they were
    qzFanOut* const outer;

    static qzFanOut* innermost;
};

#endif
