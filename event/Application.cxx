#include "event/Application.h"

#include "event/Exec.h"

qzApplication::qzApplication() : opened(0) {
    if (!qz_theExecutive) qz_theExecutive = new qzExec;
    qz_theExecutive->add(this);
}

qzApplication::~qzApplication() {
    if (opened) qzApplication::close();
    // Never opened, or added more than once.
    while (qz_theExecutive->contains(this))
        qz_theExecutive->remove(this);
}

void qzApplication::open() { opened = 1; }

void qzApplication::close() {
    qz_theExecutive->remove(this);
    opened = 0;
}
