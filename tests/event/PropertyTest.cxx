#include "event/Property.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "event/DataTypes.h"
#include "event/IntData.h"
#include "event/Obj.h"
#include "util/StrArray.h"

namespace {

TEST(qzProperty, TagsCountFromZeroAndAreNotReused) {
    qzStrArray* const names = std::exchange(qzProperty::qz_propertyNames, nullptr);
    const unsigned short next = std::exchange(qzProperty::nextTag, 0);
    EXPECT_EQ(qzProperty::findTag("a"), 0xFFFF); // without a table
    for (unsigned tag = 0; tag < 120; ++tag)
        EXPECT_EQ(qzProperty::allocNewTag(tag % 60 ? "ab" : "a"), tag);
    EXPECT_EQ(qzProperty::findTag("a"), 0);
    qzProperty::destroyPropertyNames();
    EXPECT_EQ(qzProperty::allocNewTag("a"), 120);
    qzProperty::constructPropertyNames();
    EXPECT_EQ(qzProperty::findTag("a"), 120);
    EXPECT_EQ(qzProperty::findTag(""), 0xFFFF);
    qzProperty::nextTag = 0xFFFF;
    EXPECT_EQ(qzProperty::allocNewTag("more") + qzProperty::allocNewTag("more"), 2 * 0xFFFF);
    qzProperty::destroyPropertyNames();
    qzProperty::qz_propertyNames = names;
    qzProperty::nextTag = next;
}

TEST(qzProperty, OwnsItsStringsAndTheTextsMarkedSo) {
    qzStr mine("mine");
    qzProperty string(1, mine), text(2, strdup("freed by the next"), 1);
    mine.append("!");
    EXPECT_EQ(string.getAsStr(), "mine");
    string.setAsStr(mine);
    EXPECT_EQ(string.getAsStr(), mine);
    text.setAsCharPtr("constant", 0);
    text.setAsCharPtr(strdup("freed by the destructor"), 1);
    EXPECT_STREQ(text.getAsCharPtr(), "freed by the destructor");
    EXPECT_EQ(qzProperty(1, nullptr, nullptr).getType(), qzDT_VoidPtr);
    EXPECT_EQ(qzProperty(1, static_cast<unsigned char>(1)).getType(), qzDT_qzBool);
    EXPECT_EQ(qzProperty(1, 1L).getType(), qzDT_long);
    EXPECT_EQ(qzProperty(1, 0.5).getType(), qzDT_double);
}

std::string deleted;
void deleteLetter(void* letter) { deleted += *static_cast<char*>(letter); }
void release(void* property) { static_cast<qzProperty*>(property)->delRef(); }

qzProperty* pointer;
void storeAnother(void*) { pointer->setAsVoidPtr(pointer, release); }

TEST(qzProperty, EveryPointerMeetsItsOwnDeleterOnce) {
    char letters[] = "ab";
    deleted.clear();
    pointer = new qzProperty(1, &letters[0], deleteLetter);
    pointer->addRef();
    pointer->setAsVoidPtr(&letters[1], nullptr);
    pointer->setAsVoidPtr(nullptr, storeAnother);
    pointer->setAsVoidPtr(&letters[1], deleteLetter);
    EXPECT_EQ(deleted, "ab");
    pointer->setAsVoidPtr(nullptr, nullptr); // whose deleter destroys it
}

struct Object : qzObj {
    Object() { ++alive; }
    ~Object() override { --alive, delete takenAlong; }
    qzProperty* takenAlong = nullptr;
    static inline int alive = 0;
};

TEST(qzProperty, HoldsOneReferenceOnWhatItShares) {
    Object* const object = new Object;
    qzProperty one(1, new Object), two(2, object), data(3, new qzIntData(1));
    one.setAsObjPtr(object);
    one.setAsObjPtr(object);
    EXPECT_EQ(Object::alive, 1);
    EXPECT_EQ(object->references(), 2);
    EXPECT_EQ(one.getType(), qzDT_ObjPtr);
    EXPECT_EQ(data.getType(), qzDT_int);
    EXPECT_EQ(data.getAsData()->references(), 1u);
    data.setAsData(nullptr);
    EXPECT_EQ(data.getType(), qzDT_DataPtr);
    one.cleanup(), two.cleanup();
    EXPECT_EQ(Object::alive, 0);
}

TEST(qzProperty, StoringItsOnlyReferenceAgainDestroysTheObject) {
    qzProperty object(1, new Object), data(2, new qzIntData(1));
    object.setAsObjPtr(object.getAsObjPtr());
    data.setAsData(data.getAsData());
    EXPECT_EQ(object.getAsObjPtr(), nullptr);
    EXPECT_EQ(data.getAsData(), nullptr);
    Object* const holder = new Object; // of the property that holds it
    holder->takenAlong = new qzProperty(3, holder);
    holder->takenAlong->setAsObjPtr(new Object);
    EXPECT_EQ(Object::alive, 0);
}

} // namespace
