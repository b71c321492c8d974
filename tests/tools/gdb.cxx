// What tests/tools/gdb.sh looks at through the pretty-printers.
#include "event/Converter.h"
#include "event/EventHandler.h"
#include "event/GlobalOrder.h"
#include "event/IntData.h"
#include "event/MessageEvent.h"
#include "event/OutputChannel.h"
#include "event/Property.h"
#include "event/StrData.h"
#include "event/VoidData.h"
#include "util/GenericList.h"
#include "util/IndexableList.h"
#include "util/IntArray.h"
#include "util/Path.h"
#include "util/StrArray.h"
#include "util/StrSet.h"
#include "util/StrStrDictionary.h"
#include "util/VoidPtrDict.h"

// The debugger stops here, one frame below the objects.
__attribute__((noinline)) void stopHere() { asm volatile(""); }

void receive() {}

struct Name {
    virtual ~Name() {}
    int letters = 5;
};

class Gauge : public Name, public qzObj {
  public:
    Gauge() : level(addOutput("level", qzDT_int)) {
        addInput("show", qzDT_float, nullptr, receive, 1);
    }
    qzOutputChannel* level;
    int reading = 4;
};

int main() {
    qzInitializeToolkit();
    qzPath path("/usr/share");
    qzTempStr chain = path | "/doc";
    qzIntArray ints;
    ints.append(10);
    qzStrArray strings;
    strings.append("one");
    strings.append("");
    qzStrStrDictionary dictionary(1);
    dictionary.add("first", "1");
    dictionary.add("second", "2");
    qzVoidPtrDict pointers;
    qzStrSet set(1);
    set.add("member");
    GenericList list;
    list.append(nullptr);
    qzLinkItem item;
    qzIndexableList links(&item);
    qzStrData data("text");

    Gauge gauge;
    gauge.connect("level", &gauge, "show");
    gauge.setProperty(new qzProperty(qzProperty::allocNewTag("unit"), qzStr("bar")));
    gauge.setProperty(new qzProperty(qzProperty::allocNewTag("scale"), 0.5));
    gauge.setProperty(new qzProperty(qzProperty::allocNewTag("last"), new qzVoidData));
    gauge.sendInt(gauge.level, 7, qzObj::qzSF_Queued);
    stopHere();
    // The compiler describes what is used.
    qzMessageEvent* const message = static_cast<qzMessageEvent*>(qz_theEventHandler->getHead());
    const unsigned short converts = static_cast<qzConverter*>(message->getChannel())->getType();
    return converts == static_cast<qzIntData*>(message->getData())->getType() ? 0 : 1;
}
