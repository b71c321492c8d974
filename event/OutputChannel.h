// qzOutputChannel: where values leave: the list of inputs that they go to.
//
// An entry of the list is the connected input itself or, where the types
// differ, a converter chained in front of it.
//
// Ownership: holds one reference on each entry. Destroying the channel
//     disconnects it.
// Errors: connecting types without a converter is fatal.
// Cost: 8 bytes on i386 and a pointer a connection; looking for a connection is
//     linear.
#ifndef QZ_EVENT_OUTPUTCHANNEL_H
#define QZ_EVENT_OUTPUTCHANNEL_H

#include "event/InputChannel.h"
#include "util/VoidPtrArray.h"

class QZ_EXPORT qzOutputChannel {
    friend class qzFanOut;

  public:
    explicit qzOutputChannel(unsigned short type);
    qzOutputChannel(const qzOutputChannel&) = delete;
    qzOutputChannel& operator=(const qzOutputChannel&) = delete;
    ~qzOutputChannel();

    unsigned short getType() const { return type; }

    // Connects the input behind those that are there; it is not asked whether
    // it is one of them.
    void add(qzInputChannel* input);
    // Takes the first connection to the input away, if there is one.
    void remove(qzInputChannel* input);
    // Index of the first connection to the input, or -1.
    int find(qzInputChannel* input) const;
    unsigned char isConnectedTo(qzInputChannel* input) const { return find(input) != -1; }

    // The entry as it is stored: an input or a converter.
    qzInputChannel* operator[](unsigned i) const {
        return static_cast<qzInputChannel*>((*connections)[i]);
    }
    unsigned getNumberOfConnections() const { return connections ? connections->length() : 0; }

  private:
    unsigned short type;
    qzVoidPtrArray* connections; // qzInputChannel*; null until the first one
};

static_assert(sizeof(void*) != 4 || sizeof(qzOutputChannel) == 8, "a type and a list");

#endif
