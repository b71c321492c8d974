// Objects and their properties.
#include "event/Obj.h"

#include <string>

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
    EXPECT_EQ(qzProperty(1, 1L).getType(), qzDT_long);
}

TEST(qzProperty, EveryPointerMeetsItsOwnDeleterOnce) {
    static std::string deleted;
    static qzProperty* property;
    const auto deleteLetter = [](void* letter) { deleted += *static_cast<char*>(letter); };
    char letters[] = "ab";
    property = new qzProperty(1, &letters[0], deleteLetter);
    property->addRef();
    property->setAsVoidPtr(nullptr, nullptr);
    property->setAsVoidPtr(nullptr, [](void*) { property->delRef(); });
    property->setAsVoidPtr(&letters[1], deleteLetter);
    EXPECT_EQ(deleted, "ab");
}

struct Object : qzObj {
    Object() { ++alive; }
    ~Object() override { --alive; }
    static inline int alive = 0;
};

TEST(qzProperty, HoldsOneReferenceOnWhatItShares) {
    Object* const object = new Object;
    qzProperty one(1, new Object), two(2, object), data(3, new qzIntData(1));
    one.setAsObjPtr(object);
    one.setAsObjPtr(object);
    EXPECT_EQ(Object::alive, 1);
    EXPECT_EQ(data.getType(), qzDT_int);
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
    holder->setProperty(new qzProperty(3, holder));
    holder->getProperty(0)->setAsObjPtr(new Object);
    EXPECT_EQ(Object::alive, 0);
}

TEST(qzObj, PropertiesStandInTheOrderOfTagsOnePerTag) {
    qzObj object;
    for (unsigned short tag : {5, 3, 4, 9, 1, 4, 9})
        object.setProperty(new qzProperty(tag, long{tag}));
    unsigned index, position = 0;
    for (unsigned short tag : {1, 3, 4, 5, 9}) {
        EXPECT_EQ(object.findProperty(tag, &index), object.getProperty(position));
        EXPECT_EQ(index, position++);
    }
    EXPECT_EQ(object.getNumberOfProperties(), position);
    EXPECT_FALSE(object.findProperty("nobody's", &index) || index != 0);
    EXPECT_EQ(qzObj(object).getNumberOfProperties(), 0u);
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
    EXPECT_EQ(object->getNumberOfProperties(), 1u);
    set(4, change);
    object->removeAllProperties();
    EXPECT_EQ(object->getNumberOfProperties(), 1u);
    set(7, [](void*) { delete object; });
    object->removeAllProperties();
}

// The property goes before the inputs would, sends to them and attaches another.
TEST(qzObj, NothingReachesAnObjectThatIsGoing) {
    const Dataflow flow;
    const unsigned short low = qzProperty::allocNewTag("low");
    qzProperty::destroyPropertyNames();
    Node from("from");
    static Node* node;
    node = new Node("node");
    from.connectTo(*node);
    node->setProperty(new qzProperty(low, &from, [](void* from) {
        static_cast<Node*>(from)->send(1, qzObj::qzSF_Immediate);
        node->setProperty(new qzProperty(60000, 1L));
    }));
    node->setProperty(new qzProperty(60001, node)); // whose release is not a second end
    delete node;
    from.removeAllProperties();
    EXPECT_EQ(flow.received(), "");
}

TEST(qzObj, TextIsSentAsItStood) {
    const Dataflow flow;
    Node node("node");
    qzOutputChannel* const out = node.addOutput("text", qzDT_CharPtr);
    node.connect("text", &node, "in");
    char text[] = "42";
    node.sendCharPtr(out, text, qzObj::qzSF_Queued);
    *text = 'X';
    EXPECT_EQ(flow.received(), "node42 ");
}

TEST(qzObjDeathTest, EndsTheProcessWithItsMessage) {
    const Dataflow flow;
    qzOutputChannel out(qzDT_int), stranger(qzDT_int);
    qzInputChannel longs(qzDT_long, nullptr, nullptr, 0);
    Node to("to");
    out.add(to.in);
    const auto dies = testing::KilledBySignal(SIGABRT);
    EXPECT_EXIT(to.in->remove(&stranger), dies, "^ic/oc connections busted\n$");
    EXPECT_EXIT(out.add(&longs), dies, "^Can't convert from 2 to 3\n$");
    EXPECT_EXIT(to.compare(&to), dies, "^qzXDRObj: Sub class must define method \"compare\"\n$");
}

} // namespace
