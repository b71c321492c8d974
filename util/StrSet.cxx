#include "util/StrSet.h"

#include "util/StrSetIter.h"

template class qzTypedKeys<qzSet, qzStrKeys, qzStrSet>;
template class qzTypedSet<qzStrSet, qzStrKeys>;
template class qzTypedSetIter<qzStrSet>;

qzTypeObj qzStrSet_type("SET", 1, qzStrSet::newInstance, qzStrSet::deleteInstance, qzStrSet::xdr);

qzStrSet::~qzStrSet() = default;

qzStrSetIter::~qzStrSetIter() = default;

unsigned char qzStrSet::xdr(qzTranscriber& t) { return doxdr(t); }

qzTypeObj& qzStrSet::getTypeObj() const { return qzStrSet_type; }

void* qzStrSet::newInstance(qzTypeObj& type) { return new qzStrSet(type); }

void qzStrSet::deleteInstance(void* object) { delete static_cast<qzStrSet*>(object); }

unsigned char qzStrSet::xdr(void* object, qzTranscriber& t) {
    return static_cast<qzStrSet*>(object)->xdr(t);
}
