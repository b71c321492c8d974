#include "xdr/Stream.h"

qzStream::~qzStream() = default;
