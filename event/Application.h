// qzApplication: what keeps the main loop running.
//
// A program derives one or more applications. Constructing one registers it with
// qz_theExecutive, whose loop() returns when none is registered any more:
//
//     Editor editor;
//     qzInitializeToolkit();
//     qz_theExecutive->initialize(argc, argv);
//     qz_theExecutive->open();
//     qz_theExecutive->loop(); // until editor.close()
//
// Applications may be constructed before or after qzInitializeToolkit(); the
// first one makes the executive if need be.
#ifndef QZ_EVENT_APPLICATION_H
#define QZ_EVENT_APPLICATION_H

#include "event/Obj.h"

class QZ_EXPORT qzApplication : public qzObj {
  public:
    qzApplication();
    qzApplication(const qzApplication&) = delete;
    qzApplication& operator=(const qzApplication&) = delete;

    // Closes the application if it is open, with the class's own close(), as
    // overrides are gone by then. Leaves the register in any case.
    ~qzApplication() override;
    const char* className() const override = 0;
    // after those of qzObj
    virtual void initialize(int argc, char** argv) = 0;
    virtual void open();
    // Leaves the register. An override calls this one.
    virtual void close();

    unsigned char isOpened() const { return opened; }

  protected:
    unsigned char opened;
};

static_assert(sizeof(void*) != 4 || sizeof(qzApplication) == 16, "applications derive from this");

#endif
