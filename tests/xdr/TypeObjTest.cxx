#include "xdr/TypeObj.h"

#include <gtest/gtest.h>

#include "support/RecordingTranscriber.h"
#include "util/BoolArray.h"
#include "util/CharArray.h"
#include "util/Dictionary.h"
#include "util/DoubleArray.h"
#include "util/FloatArray.h"
#include "util/IntArray.h"
#include "util/LongArray.h"
#include "util/Set.h"
#include "util/ShortArray.h"
#include "util/StrArray.h"
#include "util/StrSet.h"
#include "util/StrStrDictionary.h"
#include "util/UnsignedCharArray.h"
#include "util/UnsignedLongArray.h"
#include "util/UnsignedShortArray.h"
#include "util/VoidPtrArray.h"
#include "util/VoidPtrDict.h"

namespace {

// Name and type by type object; whoever can be created names its type, is empty,
// writes itself and is destroyed without a leak.
TEST(qzTypeObj, LibraryTypesAreRegisteredAtLoadTime) {
    for (qzTypeObj* type : {&qzXDRObj_type, &qzStr_type, &qzArray_type, &qzDictionary_type,
                            &qzSet_type, &qzStrSet_type, &qzStrStrDictionary_type}) {
        EXPECT_EQ(qzTypeObj::findType(type->name), type) << type->name;
        EXPECT_EQ(type->version, 1u);
    }
    EXPECT_STREQ(qzStrSet_type.name, "SET");
    EXPECT_STREQ(qzStrStrDictionary_type.name, "DICT");
    EXPECT_EQ(qzTypeObj::findType("no such type"), nullptr);
    for (qzTypeObj* abstract : {&qzArray_type, &qzDictionary_type, &qzSet_type})
        EXPECT_TRUE(!abstract->create && !abstract->destroy);
    for (qzTypeObj* type :
         {&qzXDRObj_type, &qzBoolArray_type, &qzCharArray_type, &qzDoubleArray_type,
          &qzFloatArray_type, &qzIntArray_type, &qzLongArray_type, &qzShortArray_type,
          &qzStrArray_type, &qzUnsignedCharArray_type, &qzUnsignedLongArray_type,
          &qzUnsignedShortArray_type, &qzStrSet_type, &qzStrStrDictionary_type}) {
        qzXDRObj* object = static_cast<qzXDRObj*>(type->create(*type));
        EXPECT_EQ(&object->getTypeObj(), type);
        RecordingTranscriber t;
        EXPECT_TRUE(type->xdr(object, t));
        type->destroy(object);
        type->destroy(nullptr);
    }
    qzStr_type.destroy(qzStr_type.create(qzStr_type));
    qzStr_type.destroy(nullptr);
}

TEST(qzXDRArray, ArrayNameResolvesToUnsignedShort) {
    EXPECT_EQ(qzTypeObj::findType("ARRAY"), &qzUnsignedShortArray_type);
}

TEST(qzTypeObj, LastRegistrationOfANameWins) {
    static qzTypeObj first("TypeObjTest", 1, nullptr, nullptr, nullptr);
    static qzTypeObj second("TypeObjTest", 2, nullptr, nullptr, nullptr);
    EXPECT_EQ(qzTypeObj::findType("TypeObjTest"), &second);
}

TEST(qzXDRObj, StaticTranscriptionIsTheBasesOwn) {
    qzIntArray array(1);
    RecordingTranscriber t;
    EXPECT_TRUE(qzXDRObj::xdr(static_cast<qzXDRObj*>(&array), t));
    EXPECT_TRUE(t.log.empty());
    EXPECT_FALSE(qzXDRObj().xdrFail(t, nullptr));
}

// Classes without a transcription of their own hand themselves over as a base
// part at the object's own address, which every transcriber passes over.
TEST(qzXDRObj, BasePartsStandAtTheObjectsAddress) {
    RecordingTranscriber t;
    EXPECT_TRUE(qzVoidPtrArray(2).xdr(t) && qzVoidPtrDict(0).xdr(t));
    EXPECT_EQ(t.log,
              (std::vector<std::string>{"base part qzXDRObj same", "base part qzDictionary same"}));
}

} // namespace
