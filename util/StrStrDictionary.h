// qzStrStrDictionary: strings by string. See util/TypedDictionary.h.
#ifndef QZ_UTIL_STRSTRDICTIONARY_H
#define QZ_UTIL_STRSTRDICTIONARY_H

#include "util/StrKeys.h"
#include "util/TypedDictionary.h"

class QZ_EXPORT qzStrStrDictionary
    : public qzTypedDictionary<qzStrStrDictionary, qzStrKeys, qzStr> {
  public:
    using qzTypedDictionary::qzTypedDictionary;
    ~qzStrStrDictionary() override;

    unsigned char xdr(qzTranscriber& t) override;
    qzTypeObj& getTypeObj() const override;
    static void* newInstance(qzTypeObj& type);
    static void deleteInstance(void* object);
    static unsigned char xdr(void* object, qzTranscriber& t);
};

extern template class qzTypedKeys<qzDictionary, qzStrKeys, qzStrStrDictionary>;
extern template class qzTypedDictionary<qzStrStrDictionary, qzStrKeys, qzStr>;
extern QZ_EXPORT qzTypeObj qzStrStrDictionary_type;

#endif
