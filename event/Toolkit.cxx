#include "event/Toolkit.h"

#include "event/Converter.h"
#include "event/DataTypes.h"
#include "event/EventHandler.h"
#include "event/EventTypes.h"
#include "event/Exec.h"
#include "event/Property.h"
#include "util/Debug.h"
#include "xdr/BinaryReader.h"
#include "xdr/Transcriber.h"

namespace {

void registerBinaryReader() { qzTranscriber::addTranscriber("qzBinaryWriter", makeBinaryReader); }

qzOrderedGlobal* transcriberNeeds[] = {&qzOG_Init, nullptr};

} // namespace

// qzOG_Init itself is with the strings, in util/Str.cxx.
qzOrderedGlobal qzOG_Transcriber(registerBinaryReader, transcriberNeeds, qzOrderedGlobal::toolkit);

void qzOG_Init_cons() {
    qzProperty::constructPropertyNames();
    qzDrawDataTypes();
    qzConverter::createStandardConverters();
    if (!qz_theExecutive) qz_theExecutive = new qzExec;
    if (!qz_theEventHandler) qz_theEventHandler = new qzEventHandler;
    qzDrawEventTypes();
    if (!qz_theDebugger) qz_theDebugger = new qzDebug(1);
}

void qzOG_Init_dest() {}
