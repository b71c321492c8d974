#include "xdr/XDRObj.h"

qzTypeObj qzXDRObj_type("qzXDRObj", 1, qzXDRObj::newInstance, qzXDRObj::deleteInstance,
                        qzXDRObj::xdr);

qzXDRObj::~qzXDRObj() = default;

const char* qzXDRObj::className() const { return "qzXDRObj"; }

unsigned char qzXDRObj::xdr(qzTranscriber&) { return 1; }

qzTypeObj& qzXDRObj::getTypeObj() const { return qzXDRObj_type; }

unsigned char qzXDRObj::xdrFail(qzTranscriber&, void*) { return 0; }

void qzXDRObj::xdrSuccess(qzTranscriber&) {}

void* qzXDRObj::newInstance(qzTypeObj& type) { return new qzXDRObj(type); }

void qzXDRObj::deleteInstance(void* object) { delete static_cast<qzXDRObj*>(object); }

unsigned char qzXDRObj::xdr(void* object, qzTranscriber& t) {
    return static_cast<qzXDRObj*>(object)->qzXDRObj::xdr(t);
}
