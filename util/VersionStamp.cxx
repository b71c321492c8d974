// QZ_VERSION and QZ_BUILD_STAMP come from the build (cmake/BuildStamp.cmake).
#include "util/VersionStamp.h"

#include "util/Companion.h"

namespace {

const char name[] = "liborvikqzds";
const int nameWidth = 33;

const char plainFormat[] = "%-*s %s (%s)\n";

// Deliberate: nothing calls for it, it only has to be in the library's file, for
// tools that stamp labelled builds to find. Pinned by
// VersionStamp.LibraryCarriesTheLabelledFormat.
[[gnu::used]] const char labelledFormat[] = "%-*s %s \"%s\" (%s)\n";

} // namespace

// Deliberate: a -1 for the message library precedes what the format asks for;
// companions expect it there. Pinned by the program tests/util/CompanionOverride.cxx.

int liborvikqzds_print_verid() {
    return imsg_print(0, plainFormat, -1, nameWidth, name, QZ_VERSION, QZ_BUILD_STAMP);
}

int liborvikqzds_sprintf_verid(char* buffer) {
    return imsg_sprintf(buffer, plainFormat, -1, nameWidth, name, QZ_VERSION, QZ_BUILD_STAMP);
}
