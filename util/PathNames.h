// pathbasename and its siblings: file names as C strings.
//
// Units: `size` is bytes, terminator included.
// Ownership: every result is a new block from malloc that the caller frees.
// Errors: null for a null argument, and where a function says so. Nothing is
//     printed.
#ifndef QZ_UTIL_PATHNAMES_H
#define QZ_UTIL_PATHNAMES_H

#include "util/Export.h"

// The last component, without the slashes after it: "b" of "a/b//", "abc" of
// "abc/". Empty when there is none: "", "/", "//".
QZ_EXPORT char* pathbasename(const char* path);

// What is before the last component and the slashes that lead to it: "a" of
// "a//b/". Without such slashes "/" for a path of slashes only, else ".". Null
// also when there is no memory.
//
// Deliberate: of "/abc" it is the empty string, not "/". Callers put the path
// together again as directory, '/', leaf. Pinned by
// pathdirname.OfAFileInTheRootIsEmpty.
QZ_EXPORT char* pathdirname(const char* path);

// The path with a leading ~ replaced by $HOME (by nothing when that is unset),
// or a leading ~name by that user's home directory. A copy of any other path,
// also of one that names an unknown user.
QZ_EXPORT char* pathexpandtilde(const char* path);

// What the symbolic link says, cut to size - 1 bytes; null when path is none or
// the link is empty.
QZ_EXPORT char* symbolicLinkExtendedName(const char* path, unsigned int size);

// The path with every $NAME replaced by that environment variable, in a block of
// `size` bytes; null when a variable is unset or the result does not fit. A
// name goes up to the next '/' or ' '. A '$' without a name is an unset
// variable. Values are not searched for further variables.
//
// Deliberate: when neither follows, the name ends before the last character of
// the path, whatever that is, and the character is copied after the value:
// "$HOME" is the variable HOM and an E. Callers write "$HOME/" for the directory
// itself, and "$DISK1" for partition 1 of $DISK. Pinned by
// environmentVariableExtendedName.NameAtTheEndStopsBeforeTheLastCharacter.
QZ_EXPORT char* environmentVariableExtendedName(const char* path, unsigned int size);

#endif
