// qzStrSet: a set of strings. See util/TypedSet.h and util/Set.h.
//
// Deliberate: className() is the base's, "qzXDRObj"; a stream names the type
// "SET". Callers go by the type object. Pinned by
// qzSetXdr.SetsGoByTheNameOfTheBase.
#ifndef QZ_UTIL_STRSET_H
#define QZ_UTIL_STRSET_H

#include "util/StrKeys.h"
#include "util/TypedSet.h"

class QZ_EXPORT qzStrSet : public qzTypedSet<qzStrSet, qzStrKeys> {
  public:
    using qzTypedSet::qzTypedSet;
    ~qzStrSet() override;

    unsigned char xdr(qzTranscriber& t) override;
    qzTypeObj& getTypeObj() const override;
    static void* newInstance(qzTypeObj& type);
    static void deleteInstance(void* object);
    static unsigned char xdr(void* object, qzTranscriber& t);
};

extern template class qzTypedKeys<qzSet, qzStrKeys, qzStrSet>;
extern template class qzTypedSet<qzStrSet, qzStrKeys>;
extern QZ_EXPORT qzTypeObj qzStrSet_type;

#endif
