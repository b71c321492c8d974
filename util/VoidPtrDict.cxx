#include "util/VoidPtrDict.h"

template class qzTypedKeys<qzDictionary, qzStrKeys, qzVoidPtrDict>;
template class qzTypedDictionary<qzVoidPtrDict, qzStrKeys, void*>;

qzVoidPtrDict::~qzVoidPtrDict() = default;

// A pointer means nothing outside the process, and a key without it no more.
unsigned char qzVoidPtrDict::xdrKey(qzTranscriber&, void*) { return 0; }
