// NameSpace: interns names as atoms, unsigned numbers that stand for them.
//
// Atoms are numbered one above the highest so far, or by the caller; which of
// the two is settled at construction. A function passed to the constructor
// fills the name space with its predefined atoms.
//
// Units: lengths are in bytes, without a terminator. A length given is never
// read beyond; a NUL within it ends the comparison of two names.
// Ownership: names made by the init function are referenced and must outlive the
// name space; all others are copied. Names returned live as long as the name
// space.
// Trusted: a name that init makes has its NUL right behind its length. Any other
// name of length 0 may be null.
// Errors: all end the process. Failed allocations, numbers too high for a table
// and the wrong way of numbering abort; a failing init function exits with -1.
// Cost: a name costs one hash and a descent of a tree that is not balanced; an
// atom costs an index. The table has room for the highest number: explicit
// numbers should be small.
#ifndef QZ_UTIL_NAMESPACE_H
#define QZ_UTIL_NAMESPACE_H

#include "util/Export.h"

struct QZ_EXPORT NameSpace_Node {
    NameSpace_Node* left;
    NameSpace_Node* right;
    unsigned long atom;
    unsigned hash;
    const char* name; // NUL-terminated
};

class QZ_EXPORT NameSpace {
  public:
    // Calls init on the empty name space; a non-zero result ends the process.
    //
    // Deliberate: explicitNumbers holds from the end of init on. Within init
    // every name space numbers automatically, so that one list of predefined
    // names serves both kinds; internAtom() takes a number there too.
    // Pinned by NameSpace.InitNumbersAutomaticallyInBothKinds.
    NameSpace(int (*init)(NameSpace*), int explicitNumbers);
    NameSpace(const NameSpace&) = delete;
    NameSpace& operator=(const NameSpace&) = delete;
    ~NameSpace();

    // The atom of the name. When there is none: nullAtom if create is 0, else a
    // new atom, one above the highest. Aborts if create is set and atoms are
    // numbered by the caller.
    unsigned long makeAtom(const char* name, int create);
    unsigned long makeAtom(const char* name, unsigned length, int create);
    // The same with the number for a new atom. Aborts if create is set and
    // atoms are numbered automatically.
    unsigned long makeAtom(unsigned long atom, const char* name, unsigned length, int create);
    // The same in either kind of name space.
    //
    // Deliberate: a number in use is given to the new name as well. The older
    // name still finds it, so that several names may stand for one atom and the
    // latest is the one shown.
    // Pinned by NameSpace.NumberInUseGoesToTheNewNameToo.
    unsigned long internAtom(unsigned long atom, const char* name, unsigned length, int create);

    // Whether the number has a name; never so for nullAtom.
    int validAtom(unsigned long atom) const;
    // Null for a number without a name.
    const char* nameForAtom(unsigned long atom) const;

    // Aborts.
    [[noreturn]] void atomError() const;

    // Releases the node and all below it.
    void freeAtom(NameSpace_Node* node);
    // Releases all atoms and the table: the name space is not to be used again.
    // One without atoms stays as it is.
    void freeAllAtoms();

    // Public for reading; change them only through the operations.
    unsigned long nullAtom = 0; // "none"; always 0
    unsigned long maxAtom = 0;  // highest atom so far
    NameSpace_Node* root = nullptr;
    unsigned tableSize = 0;           // entries in table
    NameSpace_Node** table = nullptr; // entry a is the node of atom a, or null
    int explicitNumbers = 0;
    unsigned long firstOwnedAtom = 0; // lowest atom after init; 0 during init

  private:
    NameSpace_Node* makeNode(unsigned long atom, unsigned hash, const char* name, unsigned length);
    void growTable(unsigned long atom);
};

#endif
