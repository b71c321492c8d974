// Program: qzwatch as an application of the main loop; it makes the parts and
// connects them.
//
//     Reader "lines" -> Matcher "matches", "keys" -> Counter
//     Reader "lines" -> Reporter <- "tick" qzTimer "tick" -> Inputs "look"
//     Signals "stop" -> Program    Inputs "ended" -> Program
#ifndef QZ_TOOLS_QZWATCH_PROGRAM_H
#define QZ_TOOLS_QZWATCH_PROGRAM_H

#include <memory>

#include "event/Application.h"
#include "event/Timer.h"
#include "tools/qzwatch/Inputs.h"
#include "tools/qzwatch/Options.h"
#include "tools/qzwatch/Reporter.h"
#include "tools/qzwatch/Signals.h"

namespace qzwatch {

class Program : public qzApplication {
  public:
    Program();
    ~Program() override;
    const char* className() const override { return "Program"; }

    void initialize(int argc, char** argv) override; // leaves if there is nothing to do
    void open() override;
    void close() override; // counts are saved and shown
    Status getStatus() const { return status; }

  private:
    static void stop(Program* program) { program->inputs->finish(); }
    static void ended(Program* program) { program->close(); }
    void leave(Status with);
    qzObj* counter(const qzStr& name);
    void addMatcher(unsigned i);

    Options options;
    Status status = Good;
    qzVoidPtrArray counters; // Counter*, owned
    qzVoidPtrArray matchers; // Matcher*, owned
    Reporter reporter;
    qzTimer progressTimer;
    qzTimer lookTimer;
    std::unique_ptr<Inputs> inputs;
    std::unique_ptr<Signals> signals;
};

} // namespace qzwatch

#endif
