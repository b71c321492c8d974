// Objects that write down what they receive and then act, values that act when they go.
#ifndef QZ_TESTS_EVENT_DATAFLOW_H
#define QZ_TESTS_EVENT_DATAFLOW_H

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "event/DataTypes.h"
#include "event/EventHandler.h"
#include "event/GlobalOrder.h"
#include "event/IntData.h"
#include "event/OutputChannel.h"

using Action = std::function<void()>;

// Every test has one: it starts with an empty queue and is to leave one.
struct Dataflow {
    Dataflow() { qzInitializeToolkit(), trace.clear(); }
    ~Dataflow() { EXPECT_EQ(qz_theEventHandler->getCount(), 0u); }

    std::string received() const { // since the last call
        qz_theEventHandler->distributeEvents();
        return std::exchange(trace, std::string());
    }
    static inline std::string trace;
};

struct Node : qzObj {
    explicit Node(std::string name, unsigned char coalesce = 0)
        : name(std::move(name)), out(addOutput("out", qzDT_int)) {
        in = addInput("in", qzDT_int, this, reinterpret_cast<void (*)()>(receive), coalesce);
    }
    static void receive(void* node, int value) {
        Node& self = *static_cast<Node*>(node);
        Dataflow::trace += self.name + std::to_string(value) + " ";
        if (const Action act = std::exchange(self.onReceipt, nullptr)) act();
    }
    void connectTo(Node& to) { connect("out", &to, "in"); }
    void send(int value, qzSendFlags how = qzSF_Queued) { sendInt(out, value, how); }

    const std::string name;
    qzOutputChannel* const out;
    qzInputChannel* in;
    Action onReceipt; // once
};

struct ActingData : qzIntData {
    ActingData(int value, Action act) : qzIntData(value), onEnd(std::move(act)) {}
    ~ActingData() override { onEnd(); }
    Action onEnd;
};

#endif
