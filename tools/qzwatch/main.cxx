// qzwatch: counts what matters in streams of text; qzwatch.1 is the manual page.
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "event/Exec.h"
#include "event/GlobalOrder.h"
#include "tools/qzwatch/Program.h"

namespace {

// Output that did not arrive must not look like a result.
int flushed(qzwatch::Status status) {
    if (!std::fflush(stdout) && !std::ferror(stdout)) return status;
    qzwatch::complain("standard output", std::strerror(errno));
    return status == qzwatch::Refused ? status : qzwatch::Failed;
}

} // namespace

int main(int argc, char** argv) {
    qzInitializeToolkit();
    int status;
    {
        qzwatch::Program program;
        qz_theExecutive->initialize(argc, argv);
        qz_theExecutive->open();
        qz_theExecutive->loop();
        status = flushed(program.getStatus());
    }
    qzCleanupGlobalOrderings();
    return status;
}
