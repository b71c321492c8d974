#include "event/Obj.h"

#include "event/Dataflow.h"
#include "event/Property.h"

namespace {

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
