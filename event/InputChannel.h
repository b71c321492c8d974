// qzInputChannel: where values arrive: a receiver function, the object that it
// is called with, and the type of value that it takes.
//
// A channel of type qzDT_void takes any value; its receiver is called as
// function(object). All others are called as function(object, value), with the
// value in the native form of the channel's type.
//
// A chained channel is a qzConverter: its object is the channel downstream, on
// which it holds a reference, and its function is a conversion.
//
// Ownership: counted. The object whose input it is, each connection, each
//     queued message and each converter in front of it hold one reference; the
//     release that brings the count to zero destroys it. The channel borrows
//     its object and the outputs that it is connected to.
// Trusted: function takes what the type says.
// Cost: 24 bytes on i386; connecting and disconnecting are linear in the
//     outputs that the channel is connected to.
#ifndef QZ_EVENT_INPUTCHANNEL_H
#define QZ_EVENT_INPUTCHANNEL_H

#include <cstddef>

#include "util/Export.h"

class qzMessageEvent;
class qzOutputChannel;
class qzVoidPtrArray;

class QZ_EXPORT qzInputChannel {
  public:
    using Function = void (*)(); // called with the signature of the type

    // A coalescing channel keeps at most one undelivered message. Nobody holds
    // the new channel yet.
    qzInputChannel(unsigned short type, void* object, Function function, unsigned char coalesce);
    qzInputChannel(const qzInputChannel&) = delete;
    qzInputChannel& operator=(const qzInputChannel&) = delete;
    // Leaves the outputs alone: disconnect() first.
    ~qzInputChannel();

    void addRef() { ++refCount; }
    void delRef() {
        if (--refCount == 0) destroy();
    }
    unsigned references() const { return refCount; }

    unsigned short getType() const { return static_cast<unsigned short>(type); }
    void* getObject() const { return object; }
    Function getFunction() const { return function; }
    unsigned char coalesces() const { return coalesce; }
    unsigned char isChained() const { return chained; }
    // The channel at the end of the chain: this one unless it is a converter;
    // null for a converter that has not been spliced.
    qzInputChannel* realInput();

    // The queued message of a coalescing channel, or null.
    qzMessageEvent* getPendingEvent() const { return pendingEvent; }
    void setPendingEvent(qzMessageEvent* event) { pendingEvent = event; }

    // One side of a connection; for output channels.
    void add(qzOutputChannel* output);
    // Fatal for an output that is not among the channel's.
    void remove(qzOutputChannel* output);
    unsigned getNumberOfOutputs() const;

    // Leaves every output. Destroys the channel when nothing else holds it.
    void disconnect();
    // Destroys the queued messages that are addressed to this very channel,
    // leaving those to converters in front of it.
    void flush();

    // Channels lie side by side: a send goes from one to the next.
    static void* operator new(std::size_t bytes);
    static void operator delete(void* block, std::size_t bytes);

  protected:
    void* object;
    Function function;
    unsigned coalesce : 1;
    unsigned chained : 1; // only ever set in a qzConverter
    unsigned type : 30;
    qzMessageEvent* pendingEvent;
    unsigned refCount;
    qzVoidPtrArray* outputs; // qzOutputChannel*; null until the first connection

  private:
    void destroy();
};

static_assert(sizeof(void*) != 4 || sizeof(qzInputChannel) == 24, "converters start with this");

#endif
