// Signals: SIGINT, SIGTERM and SIGHUP as a value on the output "stop"; the last one
// unless it was ignored before, as nohup has it.
//
// A signal may arrive in the middle of anything; all that is done then is to write
// to a pipe, whose other end is served like any input.
#ifndef QZ_TOOLS_QZWATCH_SIGNALS_H
#define QZ_TOOLS_QZWATCH_SIGNALS_H

#include "event/SelectHandler.h"

namespace qzwatch {

class Signals : public qzSelectHandler {
  public:
    Signals();
    ~Signals() override;
    const char* className() const override { return "Signals"; }
    void handleRead() override;

  private:
    qzOutputChannel* const stop;
    const bool hangsUp;
};

} // namespace qzwatch

#endif
