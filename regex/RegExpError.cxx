// Without its header, in which the function has to look replaceable to callers
// outside of the library: protected, it is exported and the library's own calls
// stay with it whatever the program defines.
//
// Deliberate: tells nobody, so that a malformed pattern shows as a null block
// and a failed match as no match; callers have no output of the library's to
// suppress. Pinned by qzregerror.PrintsNothing.
__attribute__((visibility("protected"))) void qzregerror(const char*) {}
