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

TEST(qzTypeObj, LibraryTypesAreRegisteredAtLoadTime) {
    const struct {
        const char* name;
        qzTypeObj* type;
        bool creates;
    } rows[] = {
        {"qzXDRObj", &qzXDRObj_type, true},
        {"qzStr", &qzStr_type, true},
        {"qzArray", &qzArray_type, false},
        {"qzDictionary", &qzDictionary_type, false},
        {"qzSet", &qzSet_type, false},
        {"SET", &qzStrSet_type, true},
        {"DICT", &qzStrStrDictionary_type, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(qzTypeObj::findType(row.name), row.type);
        EXPECT_STREQ(row.type->name, row.name);
        EXPECT_EQ(row.type->version, 1u);
        EXPECT_EQ(row.type->create != nullptr, row.creates);
        EXPECT_EQ(row.type->destroy != nullptr, row.creates);
    }
    EXPECT_EQ(qzTypeObj::findType("no such type"), nullptr);
    qzStr name("qzStr");
    EXPECT_EQ(qzTypeObj::findType(name), &qzStr_type);
}

TEST(qzXDRArray, ArrayNameResolvesToUnsignedShort) {
    EXPECT_EQ(qzTypeObj::findType("ARRAY"), &qzUnsignedShortArray_type);
}

TEST(qzTypeObj, LastRegistrationOfANameWins) {
    static qzTypeObj first("TypeObjTest", 1, nullptr, nullptr, nullptr);
    EXPECT_EQ(qzTypeObj::findType("TypeObjTest"), &first);
    static qzTypeObj second("TypeObjTest", 2, nullptr, nullptr, nullptr);
    EXPECT_EQ(qzTypeObj::findType("TypeObjTest"), &second);
}

// Every class that can be created: what it creates names its type, is empty,
// writes itself and is destroyed without a leak.
TEST(qzTypeObj, CreatedInstancesBelongToTheirType) {
    qzTypeObj* const objects[] = {
        &qzXDRObj_type,
        &qzBoolArray_type,
        &qzCharArray_type,
        &qzDoubleArray_type,
        &qzFloatArray_type,
        &qzIntArray_type,
        &qzLongArray_type,
        &qzShortArray_type,
        &qzStrArray_type,
        &qzUnsignedCharArray_type,
        &qzUnsignedLongArray_type,
        &qzUnsignedShortArray_type,
        &qzStrSet_type,
        &qzStrStrDictionary_type,
    };
    for (qzTypeObj* type : objects) {
        SCOPED_TRACE(type->name);
        qzXDRObj* object = static_cast<qzXDRObj*>(type->create(*type));
        EXPECT_EQ(&object->getTypeObj(), type);
        RecordingTranscriber t;
        EXPECT_TRUE(type->xdr(object, t));
        type->destroy(object);
        type->destroy(nullptr);
    }
    qzStr* s = static_cast<qzStr*>(qzStr_type.create(qzStr_type));
    EXPECT_EQ(s->data, &qzStr::emptyString);
    EXPECT_EQ(&s->getTypeObj(), &qzStr_type);
    qzStr_type.destroy(s);
    qzStr_type.destroy(nullptr);
}

TEST(qzXDRObj, BaseTranscribesNothing) {
    qzXDRObj object;
    RecordingTranscriber t;
    EXPECT_TRUE(object.xdr(t));
    EXPECT_TRUE(t.log.empty());
    EXPECT_FALSE(object.xdrFail(t, nullptr));
    EXPECT_STREQ(object.className(), "qzXDRObj");
}

TEST(qzXDRObj, StaticTranscriptionIsTheBasesOwn) {
    qzIntArray array(1);
    RecordingTranscriber t;
    EXPECT_TRUE(qzXDRObj::xdr(static_cast<qzXDRObj*>(&array), t));
    EXPECT_TRUE(t.log.empty());
}

// Classes without a transcription of their own hand themselves over as a base
// part at the object's own address, which every transcriber passes over.
TEST(qzXDRObj, BasePartsStandAtTheObjectsAddress) {
    RecordingTranscriber t;
    qzVoidPtrArray array(2);
    EXPECT_TRUE(array.xdr(t));
    EXPECT_EQ(&array.getTypeObj(), &qzArray_type);
    qzVoidPtrDict dictionary(0);
    EXPECT_TRUE(dictionary.xdr(t));
    EXPECT_EQ(&dictionary.getTypeObj(), &qzDictionary_type);
    EXPECT_EQ(t.log,
              (std::vector<std::string>{"base part qzXDRObj same", "base part qzDictionary same"}));
}

} // namespace
