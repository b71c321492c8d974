#include "event/OutputChannel.h"

#include "event/Converter.h"
#include "event/DataTypes.h"
#include "event/detail/FanOut.h"
#include "util/Fatal.h"

qzOutputChannel::qzOutputChannel(unsigned short type) : type(type), connections(nullptr) {}

// Releasing an entry calls nothing back: channels have no code of a program's in
// their destructors. So nothing here needs to be held.
qzOutputChannel::~qzOutputChannel() {
    qzFanOut::ended(this);
    for (unsigned i = 0; i < getNumberOfConnections(); ++i) {
        qzInputChannel* const entry = (*this)[i];
        entry->realInput()->remove(this);
        entry->delRef();
    }
    delete connections;
}

void qzOutputChannel::add(qzInputChannel* input) {
    input->add(this);
    qzInputChannel* entry = input;
    if (input->getType() != type && input->getType() != qzDT_void) {
        qzConverter* const converter = qzConverter::findConverter(type, input->getType());
        if (!converter) qzFatal("Can't convert from %d to %d", type, input->getType());
        converter->splice(input);
        entry = converter;
    }
    entry->addRef();
    if (!connections) connections = new qzVoidPtrArray;
    connections->append(entry);
    qzFanOut::added(this);
}

void qzOutputChannel::remove(qzInputChannel* input) {
    const int index = find(input);
    if (index < 0) return;
    qzInputChannel* const entry = (*this)[static_cast<unsigned>(index)];
    connections->remove(static_cast<unsigned>(index), 1);
    qzFanOut::removed(this, static_cast<unsigned>(index), entry);
    input->remove(this);
    entry->delRef();
}

int qzOutputChannel::find(qzInputChannel* input) const {
    for (unsigned i = 0; i < getNumberOfConnections(); ++i)
        if ((*this)[i]->realInput() == input) return static_cast<int>(i);
    return -1;
}
