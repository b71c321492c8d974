#include "event/EventHandler.h"

#include "event/Converter.h"
#include "event/Dataflow.h"
#include "event/EventTypes.h"
#include "event/MessageEvent.h"
#include "tests/support/AllocationCounter.h"

namespace {

constexpr auto queued = qzObj::qzSF_Queued, immediate = qzObj::qzSF_Immediate;

struct ActingEvent : qzEvent {
    explicit ActingEvent(Action act) : qzEvent(qzET_Unknown), act(std::move(act)) {}
    void deliver() override { act(); }
    const Action act;
};

TEST(qzEvent, CopyKeepsTheSequenceNumber) {
    const Dataflow flow;
    Node to("to");
    qzMessageEvent first(to.in, new qzIntData(1)), second(to.in, new qzIntData(2)), copy(first);
    EXPECT_EQ(copy.getSequenceNumber() + 1, second.getSequenceNumber());
    testing::internal::CaptureStdout();
    copy.dump(stdout);
    const std::string number = std::to_string(first.getSequenceNumber());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Event: seq=" + number + " type=1\n");
}

TEST(qzEventHandler, DataNobodyTookIsDestroyed) {
    const Dataflow flow;
    Node from("from"), to("to");
    std::string ended;
    const auto send = [&](char name, unsigned how, bool held = false) {
        qzData* const data = new ActingData(1, [&ended, name] { ended += name; });
        if (held) data->addRef();
        to.onReceipt = [data] { data->addRef(); };
        from.sendData(from.out, data, static_cast<qzObj::qzSendFlags>(how));
        return data;
    };
    from.sendData(from.out, nullptr, immediate);
    send('a', queued); // nobody is connected
    send('b', immediate, true);
    from.connectTo(to);
    send('c', 3); // an unknown flag
    qzData* const kept = send('d', immediate);
    send('e', queued);
    EXPECT_EQ(ended, "abc");
    kept->delRef();
    to.onReceipt = nullptr;
    EXPECT_EQ(flow.received(), "to1 to1 ");
    EXPECT_EQ(ended, "abcde");
}

// Whatever its value does when it is superseded, and however it left the queue.
TEST(qzEventHandler, CoalescingInputKeepsOneUndeliveredMessage) {
    const Dataflow flow;
    Node from("from"), to("to", 2);
    from.connectTo(to);
    const auto queue = [&](Action act) { from.sendData(from.out, new ActingData(1, act), queued); };
    queue([&] { from.send(2); });
    from.send(3);
    EXPECT_EQ(flow.received(), "to3 ");
    queue([&] { from.send(4); });
    from.send(5, immediate);
    EXPECT_EQ(flow.received(), "to5 to4 ");
    from.send(6);
    delete qz_theEventHandler->getHead();
    from.send(7);
    qzEvent* const taken = qz_theEventHandler->get();
    from.send(8);
    delete taken;
    EXPECT_TRUE(to.in->getPendingEvent() && zapMessageEvents(to.in->getPendingEvent(), to.in));
    EXPECT_FALSE(to.in->getPendingEvent());
    to.in->flush();
    queue([&] { from.removeOutput("out"); });
    from.send(9, immediate);
    EXPECT_EQ(flow.received(), "");
}

// In the queue, in delivery, about to be purged, while a purge looks at them.
TEST(qzEventHandler, EventsMayBeDestroyedWhereverTheyAre) {
    const Dataflow flow;
    Node from("from", 1);
    from.connectTo(from);
    qzEvent* events[3];
    const auto post = [&](Action first, Action second) {
        for (const Action& act : {first, second, Action([] {})}) {
            static unsigned i;
            qz_theEventHandler->postEvent(events[i++ % 3] = new ActingEvent(act), 0);
        }
    };
    post([&] { delete events[2]; }, [&] { delete events[1]; });
    flow.received();
    const Action destroyAndSend = [&] { delete events[0], delete events[1], from.send(2); };
    qzMessageEvent* const first = new qzMessageEvent(from.in, new ActingData(1, destroyAndSend));
    qz_theEventHandler->postEvent(first, 0);
    post(nullptr, nullptr);
    from.send(1);
    qz_theEventHandler->removeEvents([](qzEvent*, void*) -> unsigned char { return 1; }, nullptr);
    EXPECT_EQ(flow.received(), "from2 ");
    post([] {}, [] {});
    const auto destroyTwo = [](qzEvent* event, void*) -> unsigned char {
        delete event->getNext();
        delete event;
        return 1;
    };
    qz_theEventHandler->removeEvents(destroyTwo, nullptr);
    from.sendData(from.out, new ActingData(3, [] { qz_theEventHandler->distributeEvents(); }),
                  qzObj::qzSF_Queued);
    delete qz_theEventHandler->getHead();
    EXPECT_EQ(flow.received(), "");
    from.send(4);
    qzEventQueue own;
    own.append(qz_theEventHandler->get());
    from.send(5); // supersedes nothing that is queued here
    own.remove(own.getHead());
    EXPECT_EQ(flow.received(), "from5 ");
}

void deliverTwice(qzInputChannel* downstream, int value) {
    for (int i = 0; i < 2; ++i)
        reinterpret_cast<void (*)(void*, int)>(downstream->getFunction())(downstream->getObject(),
                                                                          value);
}

// What a conversion is called with stays until it returns, whoever disconnects it.
TEST(qzEventHandler, EntryLivesToTheEndOfItsTurn) {
    const Dataflow flow;
    const unsigned short type = 77;
    qzConverter* const converter =
        new qzConverter(qzDT_int, type, reinterpret_cast<void (*)()>(deliverTwice));
    for (unsigned row = 0; row < 4; ++row) {
        const auto how = row % 2 ? immediate : queued;
        const bool endOutput = row / 2;
        Node from("from"), to("to");
        to.in = to.addInput("in", type, &to, reinterpret_cast<void (*)()>(Node::receive), 0);
        from.connectTo(to);
        to.onReceipt = [&] {
            if (endOutput) from.removeOutput("out");
            to.removeInput("in");
        };
        from.send(1, how);
        EXPECT_EQ(flow.received(), "to1 to1 ");
    }
    delete converter;
}

struct DerivedMessage : qzMessageEvent {
    using qzMessageEvent::qzMessageEvent;
    ~DerivedMessage() override { Dataflow::trace += "gone "; }
    void deliver() override { Dataflow::trace += "delivered "; }
};

TEST(qzEventHandler, DerivedMessagesDeliverThemselves) {
    const Dataflow flow;
    Node to("to");
    qz_theEventHandler->postEvent(new DerivedMessage(to.in, new qzIntData(1)), 0);
    EXPECT_EQ(flow.received(), "delivered gone ");
}

TEST(qzEventHandler, ImmediateSendAllocatesNothing) {
    if (const char* obstacle = AllocationCounter::obstacle()) GTEST_SKIP() << obstacle;
    const Dataflow flow;
    Node node("");
    node.connectTo(node);
    const AllocationCounter counter;
    node.send(1, immediate);
    EXPECT_EQ(counter.counts().allocations, 0u);
}

} // namespace
