// qzSelectHandler: serves one file descriptor from the main loop.
//
// A subclass sets the descriptor and what it waits for, names itself and
// overrides the handle operations; qz_theExecutive->addSelectHandler() puts it to
// work. It is called while the descriptor is ready: one that does not read what
// is there is called again in the next pass.
//
// The interest flags are looked at when the handler is added: to change them,
// remove the handler, set them and add it again.
//
// Ownership: owns the descriptor and closes it when destroyed. Whoever destroys a
//     handler removes it from the executive first; a handle operation may do so
//     with its own handler.
// Units: descriptors 0 to 99 can be served.
#ifndef QZ_EVENT_SELECTHANDLER_H
#define QZ_EVENT_SELECTHANDLER_H

#include "event/Obj.h"

class QZ_EXPORT qzSelectHandler : public qzObj {
  public:
    // No descriptor yet (-1), waiting to read only.
    qzSelectHandler();
    qzSelectHandler(const qzSelectHandler&) = delete;
    qzSelectHandler& operator=(const qzSelectHandler&) = delete;

    // Deliberate: leaves the executive's table alone and closes whatever number
    // is there, -1 too. Handlers are destroyed by whoever knows which executive
    // has them. Pinned by qzExec.TheTableGoesByDescriptor.
    ~qzSelectHandler() override;
    const char* className() const override = 0;
    // after those of qzObj
    virtual void handleRead() = 0;
    virtual void handleWrite();
    virtual void handleException();

    int getDescriptor() const { return descriptor; }
    unsigned char isReading() const { return reading; }
    unsigned char isWriting() const { return writing; }
    unsigned char isExceptioning() const { return exceptioning; }

  protected:
    int descriptor;
    unsigned char reading;
    unsigned char writing;
    unsigned char exceptioning;
};

static_assert(sizeof(void*) != 4 || sizeof(qzSelectHandler) == 20, "applications derive from this");

#endif
