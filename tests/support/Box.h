// An object whose members are what a test says.
#ifndef QZ_TESTS_SUPPORT_BOX_H
#define QZ_TESTS_SUPPORT_BOX_H

#include <functional>

#include "util/Str.h"
#include "xdr/Transcriber.h"
#include "xdr/XDRObj.h"

struct Box : qzXDRObj {
    using Members = std::function<unsigned char(Box&, qzTranscriber&)>;
    static inline Members members;
    static unsigned char xdr(void* box, qzTranscriber& t) {
        return members(*static_cast<Box*>(box), t);
    }
    static qzTypeObj boxType;
    explicit Box(qzTypeObj& type = boxType) : type(type) {}
    qzTypeObj& getTypeObj() const override { return type; }

    qzTypeObj& type;
    unsigned words[2] = {};
    short halves[2] = {};
    double precise = 0;
    char* text = nullptr;
    int* ints = nullptr;
    Box* other = nullptr;
    Box* another = nullptr;
    qzStr strings[2];
};
inline qzTypeObj Box::boxType(
    "Box", 1, [](qzTypeObj& type) -> void* { return new Box(type); }, nullptr, Box::xdr);

// A part.
inline qzTypeObj weightType("Weight", 7, nullptr, nullptr, [](void* part, qzTranscriber& t) {
    return t.xdr(static_cast<double*>(part), 1);
});

// Members that point.
inline unsigned char pointTo(Box*& member, Box& owner, qzTranscriber& t) {
    return t.xdr(&member, member, owner.type, &owner, nullptr);
}

#endif
