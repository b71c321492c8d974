#include "event/EventHandler.h"

#include "event/Converter.h"
#include "event/Dataflow.h"
#include "event/EventTypes.h"
#include "event/MessageEvent.h"
#include "tests/support/AllocationCounter.h"

namespace {

constexpr auto queued = qzObj::qzSF_Queued, immediate = qzObj::qzSF_Immediate;

template <class Event> struct Acting : Event {
    template <class... To> Acting(Action act, To... to) : Event(to...), act(std::move(act)) {}
    void deliver() override { act(); }
    const Action act;
};

TEST(qzEvent, CopyKeepsTheSequenceNumber) {
    const Dataflow flow;
    Node to("to");
    qzMessageEvent first(to.in, new qzIntData(1)), second(to.in, new qzIntData(2)), copy(first);
    testing::internal::CaptureStdout();
    copy.dump(stdout);
    const std::string number = std::to_string(second.getSequenceNumber() - 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Event: seq=" + number + " type=1\n");
}

TEST(qzEventHandler, DataNobodyTookIsDestroyed) {
    const Dataflow flow;
    Node from("from"), to("to");
    unsigned ended = 0;
    const auto send = [&] {
        qzData* const data = new ActingData(1, [&] { ++ended; });
        data->addRef();
        to.onReceipt = [data] { data->addRef(); };
        from.sendData(from.out, data, immediate);
        return data;
    };
    from.sendData(from.out, nullptr, immediate);
    send(); // nobody is connected
    EXPECT_EQ(ended, 1u);
    from.connectTo(to);
    qzData* const kept = send();
    EXPECT_EQ(ended, 1u);
    kept->delRef();
    kept->delRef();
}

// Neither at once nor later are their receivers handed a value of any kind.
TEST(qzEventHandler, VoidInputsTakeNoValue) {
    struct Silent : qzIntData {
        using qzIntData::qzIntData;
        void deliverTo(void (*)(), void*) override { ADD_FAILURE(); }
    };
    const Dataflow flow;
    Node from("from");
    qzObj to;
    const auto receiver = +[](void*) { Dataflow::trace += "void "; };
    to.addInput("in", qzDT_void, nullptr, reinterpret_cast<void (*)()>(receiver), 0);
    from.connect("out", &to, "in");
    from.send(1, immediate);
    from.sendData(from.out, new Silent(2), immediate);
    from.sendData(from.out, new Silent(3), queued);
    EXPECT_EQ(flow.received(), "void void void ");
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
    const auto post = [&](const Action& act) {
        events[0] = new Acting<qzEvent>(act, qzET_Unknown);
        events[1] = new Acting<qzMessageEvent>(act, from.in, new qzIntData(0));
        events[2] = new Acting<qzEvent>(act, qzET_Unknown);
        for (qzEvent* event : events)
            qz_theEventHandler->postEvent(event, 0);
    };
    unsigned last = 2;
    post([&] { delete events[last--]; });
    EXPECT_EQ(flow.received(), "");
    const Action destroyAndSend = [&] { delete events[0], delete events[1], from.send(2); };
    qzMessageEvent* const first = new qzMessageEvent(from.in, new ActingData(1, destroyAndSend));
    qz_theEventHandler->postEvent(first, 0);
    post(nullptr);
    from.send(1);
    qz_theEventHandler->removeEvents([](qzEvent*, void*) -> unsigned char { return 1; }, nullptr);
    EXPECT_EQ(flow.received(), "from2 ");
    post(nullptr);
    const auto destroyTwo = [](qzEvent* event, void*) -> unsigned char {
        delete event->getNext();
        delete event;
        return 1;
    };
    qz_theEventHandler->removeEvents(destroyTwo, nullptr);
    from.sendData(from.out, new ActingData(3, [&] { flow.received(); }), queued);
    delete qz_theEventHandler->getHead();
    EXPECT_EQ(flow.received(), "");
}

void deliverTwice(qzInputChannel* downstream, int value) {
    for (int i = 0; i < 2; ++i)
        reinterpret_cast<void (*)(void*, int)>(downstream->getFunction())(downstream->getObject(),
                                                                          value);
}

// What a conversion is called with stays until it returns, whoever disconnects it.
// The one that was registered last is found, while it lives.
TEST(qzEventHandler, EntryLivesToTheEndOfItsTurn) {
    const Dataflow flow;
    const auto twice = reinterpret_cast<void (*)()>(deliverTwice);
    qzConverter* const own = new qzConverter(qzDT_int, qzDT_float, twice);
    for (unsigned row = 0; row < 4; ++row) {
        Node from("from"), to("to");
        to.addInput("in", qzDT_float, &to, reinterpret_cast<void (*)()>(Node::receive), 0);
        from.connectTo(to);
        to.onReceipt = [&] {
            if (row / 2) from.removeOutput("out");
            to.removeInput("in");
        };
        from.send(1, row % 2 ? immediate : queued);
        EXPECT_EQ(flow.received(), "to1 to1 ");
    }
    delete own;
    EXPECT_NE(qz_theConverters, own);
}

// What a burst needed serves the next one, and goes bit by bit when none comes.
TEST(qzEventHandler, BlocksOfABurstAreRecycledAndThenReleased) {
    if (const char* obstacle = AllocationCounter::obstacle()) GTEST_SKIP() << obstacle;
    const Dataflow flow;
    Node from("from");
    from.addInput("any", qzDT_void, nullptr, reinterpret_cast<void (*)()>(+[](void*) {}), 0);
    from.connect("out", &from, "any");
    const auto send = [&](unsigned n, qzObj::qzSendFlags how) {
        const AllocationCounter counter;
        while (n-- > 0)
            from.send(1, how);
        qz_theEventHandler->distributeEvents();
        return counter.counts();
    };
    EXPECT_EQ(send(1, immediate).allocations, 0u);
    send(10000, queued);
    EXPECT_EQ(send(10000, queued).allocations, 0u);
    unsigned releases = 0;
    for (unsigned i = 0; i < 100; ++i)
        releases += send(1, queued).releases;
    EXPECT_GE(releases, 9u);
}

} // namespace
