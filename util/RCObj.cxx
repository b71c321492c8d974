#include "util/RCObj.h"

qzRCObj::~qzRCObj() = default;
