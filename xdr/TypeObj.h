// qzTypeObj: what transcription knows about a class.
//
// Every class whose instances can be written to and read back from a stream
// has one of these: the name under which a stream records its instances, a
// version, and three plain functions. Constructing one registers it, so that a
// reader can go from a name in a stream to the functions that rebuild the
// object. The library's own are globals named after their class (qzStr_type)
// and constructed at load time.
//
// Ownership: the name is kept, not copied; use a string literal. A type object
// lives until the process ends.
#ifndef QZ_XDR_TYPEOBJ_H
#define QZ_XDR_TYPEOBJ_H

#include "util/Export.h"

class qzStr;
class qzTranscriber;
class qzVoidPtrDict;

class QZ_EXPORT qzTypeObj {
  public:
    // Returns a new, empty instance for a reader to fill; null for a class
    // that a reader cannot instantiate.
    using CreateFunction = void* (*)(qzTypeObj&);
    // Destroys what the create function made; null where that is null.
    using DestroyFunction = void (*)(void*);
    // Writes or reads the members of the instance; true on success.
    using XDRFunction = unsigned char (*)(void*, qzTranscriber&);

    qzTypeObj(const char* name, unsigned version, CreateFunction create, DestroyFunction destroy,
              XDRFunction xdr);
    qzTypeObj(const qzTypeObj&) = delete;
    qzTypeObj& operator=(const qzTypeObj&) = delete;

    const char* const name;
    const unsigned version; // recorded beside each object, compared on reading
    const CreateFunction create;
    const DestroyFunction destroy;
    const XDRFunction xdr;

    // Deliberate: of several type objects with one name the last registered
    // one is found, without a warning. The typed arrays share "ARRAY" this way,
    // and a program replaces a library class by registering its own under the
    // same name. Pinned by qzTypeObj.LastRegistrationOfANameWins.
    static void registerType(qzTypeObj* type);

    // The type registered under the name, or null.
    static qzTypeObj* findType(const char* name);
    static qzTypeObj* findType(qzStr& name);

  private:
    // Null until the first registration, which may come from any file's static
    // initialization: hence a constant-initialized pointer. Never destroyed.
    static qzVoidPtrDict* registry;
};

static_assert(sizeof(qzTypeObj) == 5 * sizeof(void*) || sizeof(void*) != 4,
              "name, version and the three functions, nothing else");

#endif
