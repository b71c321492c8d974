#include "xdr/BinaryOTDict.h"

template class qzTypedKeys<qzDictionary, qzAddressKeys, qzBinaryOTDict>;
template class qzTypedDictionary<qzBinaryOTDict, qzAddressKeys, unsigned long>;

qzBinaryOTDict::~qzBinaryOTDict() = default;
