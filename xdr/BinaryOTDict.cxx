#include "xdr/BinaryOTDict.h"

template class qzTypedDictionary<qzBinaryOTDict, qzAddressKeys, unsigned long>;

qzBinaryOTDict::~qzBinaryOTDict() = default;
