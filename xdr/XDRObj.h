// qzXDRObj: base of the classes that can be transcribed.
//
// A serializable class overrides className(), xdr() and getTypeObj(), and
// provides three static functions for its type object:
//
//     static void* newInstance(qzTypeObj&);            // an empty instance
//     static void deleteInstance(void*);               // null does nothing
//     static unsigned char xdr(void*, qzTranscriber&); // forwards to xdr()
//
// Its xdr() makes one sequence of calls on the transcriber that serves writing
// and reading alike, and returns false as soon as one of them does.
#ifndef QZ_XDR_XDROBJ_H
#define QZ_XDR_XDROBJ_H

#include "util/RCObj.h"
#include "xdr/TypeObj.h"

class qzTranscriber;

class QZ_EXPORT qzXDRObj : public qzRCObj {
  public:
    qzXDRObj() {}
    explicit qzXDRObj(qzTypeObj&) {} // for a reader; the type is not stored

    // slots 1-6
    ~qzXDRObj() override;
    virtual const char* className() const;
    virtual unsigned char xdr(qzTranscriber& t);
    virtual qzTypeObj& getTypeObj() const;
    virtual unsigned char xdrFail(qzTranscriber& t, void* where);
    virtual void xdrSuccess(qzTranscriber& t);

    static void* newInstance(qzTypeObj& type);
    static void deleteInstance(void* object);
    // Deliberate: runs qzXDRObj's own xdr, not the object's. Type objects of
    // derived classes carry their own function. Pinned by
    // qzXDRObj.StaticTranscriptionIsTheBasesOwn.
    static unsigned char xdr(void* object, qzTranscriber& t);
};

static_assert(sizeof(qzXDRObj) == sizeof(qzRCObj), "adds operations, no fields");

extern QZ_EXPORT qzTypeObj qzXDRObj_type;

#endif
