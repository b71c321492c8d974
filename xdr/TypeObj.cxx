#include "xdr/TypeObj.h"

#include "util/VoidPtrDict.h"

qzVoidPtrDict* qzTypeObj::registry = nullptr;

qzTypeObj::qzTypeObj(const char* name, unsigned version, CreateFunction create,
                     DestroyFunction destroy, XDRFunction xdr)
    : name(name), version(version), create(create), destroy(destroy), xdr(xdr) {
    registerType(this);
}

void qzTypeObj::registerType(qzTypeObj* type) {
    if (!registry) registry = new qzVoidPtrDict(0);
    (*registry)[type->name] = type;
}

qzTypeObj* qzTypeObj::findType(const char* name) {
    if (!registry) return nullptr;
    qzStr key(name);
    return findType(key);
}

qzTypeObj* qzTypeObj::findType(qzStr& name) {
    if (!registry) return nullptr;
    void** entry = registry->find(name, nullptr);
    return entry ? static_cast<qzTypeObj*>(*entry) : nullptr;
}
