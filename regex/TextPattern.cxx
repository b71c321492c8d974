#include "regex/TextPattern.h"

qzTextPattern::~qzTextPattern() = default;
