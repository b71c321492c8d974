#include "regex/IsRegEx.h"

#include <cstring>

const char* const regexpchars = ".+*^$(){}[]";

bool qzIsRegEx(const char* s) { return std::strpbrk(s, regexpchars) != nullptr; }
