// qzMessageEvent: a value on its way through the queue to an input channel.
//
// Ownership: holds one reference on the channel and one on the data. An input
//     that loses its connections while messages for it are queued so stays until
//     they have been delivered or purged.
// Cost: 36 bytes on i386.
#ifndef QZ_EVENT_MESSAGEEVENT_H
#define QZ_EVENT_MESSAGEEVENT_H

#include <cstddef>

#include "event/Event.h"

class QZ_EXPORT qzMessageEvent : public qzEvent {
  public:
    // The channel is an entry of an output: an input or a converter.
    qzMessageEvent(qzInputChannel* channel, qzData* data);
    qzMessageEvent(const qzMessageEvent& other);
    // The channel's pending event is another one, or none, from here on.
    ~qzMessageEvent() override;

    void deliver() override;
    void dump(FILE* out) override;
    qzInputChannel* getChannel() override;
    qzData* getData() const { return data; }

    static void* operator new(std::size_t bytes);
    static void operator delete(void* block, std::size_t bytes);

  private:
    qzInputChannel* channel;
    qzData* data;
};

static_assert(sizeof(void*) != 4 || sizeof(qzMessageEvent) == 36, "one for every queued value");

#endif
