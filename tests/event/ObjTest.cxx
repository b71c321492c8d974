// Objects and their properties.
#include "event/Obj.h"

#include <string>
#include <utility>

#include "event/Dataflow.h"
#include "event/Property.h"
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

std::string tags(const qzObj& object) {
    std::string all;
    for (unsigned i = 0; i < object.getNumberOfProperties(); ++i)
        all += std::to_string(object.getProperty(i)->getTag()) + " ";
    return all;
}

TEST(qzObj, PropertiesStandInTheOrderOfTagsOnePerTag) {
    qzObj object;
    for (unsigned short tag : {5, 3, 4, 9, 1, 4, 9})
        object.setProperty(new qzProperty(tag, long{tag}));
    EXPECT_EQ(tags(object), "1 3 4 5 9 ");
    unsigned index;
    EXPECT_EQ(object.findProperty(9, &index)->getAsLong(), 9);
    EXPECT_FALSE(object.findProperty("nobody's", &index) || index != 0);
    EXPECT_EQ(tags(qzObj(object)), "");
    object.removeAllProperties();
    object.setProperty(new qzProperty(7, 0L));
    EXPECT_EQ(tags(object), "7 ");
}

// Deleters change their object and destroy it.
TEST(qzObj, ReleasedPropertyHasLeftTheList) {
    static qzObj* object;
    object = new qzObj;
    const auto set = [](unsigned short tag, qzProperty::Deleter deleter) {
        object->setProperty(new qzProperty(tag, object, deleter));
    };
    const auto change = [](void*) {
        object->removeProperty(4);
        object->setProperty(new qzProperty(5, 1L));
    };
    set(4, change);
    set(4, change); // and is removed at once
    EXPECT_EQ(tags(*object), "5 ");
    set(4, change);
    object->setProperty(object->getProperty(0)); // the same again: nothing is released
    object->removeAllProperties();
    EXPECT_EQ(tags(*object), "5 ");
    set(4, change);
    set(7, [](void*) { delete object; });
    object->removeAllProperties();
}

// The property goes before the inputs would, sends to them and attaches another.
TEST(qzObj, NothingReachesAnObjectThatIsGoing) {
    const Dataflow flow;
    const unsigned short low = qzProperty::allocNewTag("low");
    qzProperty::destroyPropertyNames();
    auto* const node = new Node("node");
    node->connectTo(*node);
    static qzOutputChannel* out;
    out = node->out;
    node->setProperty(new qzProperty(low, static_cast<qzObj*>(node), [](void* going) {
        qzObj* const object = static_cast<qzObj*>(going);
        object->sendInt(out, 1, qzObj::qzSF_Immediate);
        object->setProperty(new qzProperty(60000, 1L));
    }));
    node->setProperty(new qzProperty(60001, node)); // whose release is not a second end
    delete node;
    EXPECT_EQ(flow.received(), "");
}

TEST(qzObj, TextIsSentAsItStoodAndVoidInputsTakeAnything) {
    const Dataflow flow;
    qzObj object;
    const auto receiver = +[](void*, char* text) { Dataflow::trace = text; };
    object.addInput("in", qzDT_CharPtr, nullptr, reinterpret_cast<void (*)()>(receiver), 0);
    qzOutputChannel* const out = object.addOutput("out", qzDT_CharPtr);
    object.connect("out", &object, "in");
    object.addInput("any", qzDT_void, nullptr, reinterpret_cast<void (*)()>(+[](void*) {}), 0);
    object.connect("out", &object, "any");
    char text[] = "as sent";
    object.sendCharPtr(out, text, qzObj::qzSF_Queued);
    *text = 'X';
    EXPECT_EQ(flow.received(), "as sent");
}

TEST(qzObjDeathTest, EndsTheProcessWithItsMessage) {
    const Dataflow flow;
    qzOutputChannel out(qzDT_int), stranger(qzDT_int);
    qzInputChannel longs(qzDT_long, nullptr, nullptr, 0);
    Node to("to");
    out.add(to.in);
    const auto disagree = [&] { to.in->add(&stranger), to.in->disconnect(); };
    const auto dies = testing::KilledBySignal(SIGABRT);
    EXPECT_EXIT(to.in->remove(&stranger), dies, "^ic/oc connections busted\n$");
    EXPECT_EXIT(disagree(), dies, "^ic/oc connections busted\n$");
    EXPECT_EXIT(out.add(&longs), dies, "^Can't convert from 2 to 3\n$");
    EXPECT_EXIT(to.compare(&to), dies, "^qzXDRObj: Sub class must define method \"compare\"\n$");
}

} // namespace
