// qzVoidPtrDict: untyped pointers by string. See util/TypedDictionary.h.
//
// What the pointers point at is not owned. Entries cannot be transcribed: only
// an empty dictionary gets through doxdr().
#ifndef QZ_UTIL_VOIDPTRDICT_H
#define QZ_UTIL_VOIDPTRDICT_H

#include "util/StrKeys.h"
#include "util/TypedDictionary.h"

class QZ_EXPORT qzVoidPtrDict : public qzTypedDictionary<qzVoidPtrDict, qzStrKeys, void*> {
  public:
    using qzTypedDictionary::qzTypedDictionary;
    ~qzVoidPtrDict() override;

  protected:
    unsigned char xdrKey(qzTranscriber& t, void* key) override; // always false
};

extern template class qzTypedKeys<qzDictionary, qzStrKeys, qzVoidPtrDict>;
extern template class qzTypedDictionary<qzVoidPtrDict, qzStrKeys, void*>;

#endif
