#include "util/Counted.h"

Counted::~Counted() = default;
