#include "util/StrStrDictionary.h"

template class qzTypedKeys<qzDictionary, qzStrKeys, qzStrStrDictionary>;
template class qzTypedDictionary<qzStrStrDictionary, qzStrKeys, qzStr>;

qzTypeObj qzStrStrDictionary_type("DICT", 1, qzStrStrDictionary::newInstance,
                                  qzStrStrDictionary::deleteInstance, qzStrStrDictionary::xdr);

qzStrStrDictionary::~qzStrStrDictionary() = default;

unsigned char qzStrStrDictionary::xdr(qzTranscriber& t) { return doxdr(t); }

qzTypeObj& qzStrStrDictionary::getTypeObj() const { return qzStrStrDictionary_type; }

void* qzStrStrDictionary::newInstance(qzTypeObj& type) { return new qzStrStrDictionary(type); }

void qzStrStrDictionary::deleteInstance(void* object) {
    delete static_cast<qzStrStrDictionary*>(object);
}

unsigned char qzStrStrDictionary::xdr(void* object, qzTranscriber& t) {
    return static_cast<qzStrStrDictionary*>(object)->xdr(t);
}
