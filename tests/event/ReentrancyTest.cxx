// Random programs, whose receivers and destructors of values act as well, against
// a model that knows the connections and the queue as lists.
#include <algorithm>
#include <deque>
#include <list>
#include <memory>
#include <random>

#include "event/Dataflow.h"

namespace {

class Program {
  public:
    explicit Program(unsigned seed) : random(seed) {
        while (steps < 1000 && !testing::Test::HasFailure())
            act();
        for (unsigned i = 0; i < size; ++i)
            destroy(i);
    }

  private:
    struct Input { // what receivers are called with; stays when the channel goes
        Program& program;
        unsigned owner;
    };
    struct Connection {
        unsigned from;
        Input* to;
    };
    struct Object {
        std::unique_ptr<qzObj> real;
        qzOutputChannel* out;
        Input* in; // of the name
    };
    struct Call { // into the library, from outside or from a callback
        int sent = 0;
        std::list<Connection> toDeliver; // of an immediate send
        unsigned budget = 0;             // of a distribution
    };

    unsigned below(unsigned n) { return random() % n; }

    void act() {
        using P = Program;
        static constexpr void (P::*actions[])(unsigned) = {
            &P::destroy, &P::addInput, &P::removeInput, &P::addOutput, &P::connect, &P::connect,
            &P::connect, &P::connect,  &P::send,        &P::send,      &P::send,    &P::distribute};
        ++steps;
        const unsigned i = below(size);
        if (!objects[i].real) objects[i].real.reset(new qzObj), addOutput(i);
        (this->*actions[below(std::size(actions))])(i);
        EXPECT_EQ(qz_theEventHandler->getCount(), queue.size());
    }

    void callBack() {
        if (calls.size() < 5 && steps < 1000 && below(2)) act();
    }

    void call(Call call, const Action& real) {
        calls.push_back(std::move(call));
        real();
        EXPECT_TRUE(calls.back().toDeliver.empty());
        EXPECT_TRUE(calls.back().budget == 0 || queue.empty());
        calls.pop_back();
    }

    template <class Condition> void disconnect(Condition holds) {
        connections.remove_if(holds);
        for (Call& call : calls)
            call.toDeliver.remove_if(holds);
    }

    void destroy(unsigned i) {
        disconnect([i](const Connection& c) { return c.from == i || c.to->owner == i; });
        queue.remove_if([i](const auto& message) { return message.first->owner == i; });
        objects[i].in = nullptr;
        call({}, [gone = objects[i].real.release()] { delete gone; });
    }

    void addOutput(unsigned i) {
        disconnect([i](const Connection& c) { return c.from == i; });
        objects[i].out = objects[i].real->addOutput("out", qzDT_int);
    }

    void addInput(unsigned i) {
        inputs.push_back({*this, i});
        objects[i].in = &inputs.back();
        objects[i].real->addInput("in", qzDT_float, objects[i].in,
                                  reinterpret_cast<void (*)()>(receive), 0);
    }

    void removeInput(unsigned i) {
        const Input* const old = std::exchange(objects[i].in, nullptr);
        disconnect([old](const Connection& c) { return c.to == old; });
        queue.remove_if([old](const auto& message) { return message.first == old; });
        call({}, [&] { objects[i].real->removeInput("in"); });
    }

    void connect(unsigned from) {
        const Object &source = objects[from], &target = objects[below(size)];
        const auto same = [&](const Connection& c) { return c.from == from && c.to == target.in; };
        if (!target.real) return;
        if (below(5) == 0) {
            source.real->disconnect("out", target.real.get(), "in");
            return disconnect(same);
        }
        source.real->connect("out", target.real.get(), "in");
        if (target.in && std::none_of(connections.begin(), connections.end(), same))
            connections.push_back({from, target.in});
    }

    void send(unsigned from) {
        const auto how = static_cast<qzObj::qzSendFlags>(below(4)); // 3 reaches nobody
        Call sending{++lastValue, {}, 0};
        for (const Connection& connection : connections) {
            if (connection.from != from || how == 3) continue;
            if (how == qzObj::qzSF_Immediate)
                sending.toDeliver.push_back(connection);
            else
                queue.insert(how == qzObj::qzSF_Urgent ? queue.begin() : queue.end(),
                             {connection.to, lastValue});
        }
        auto* const data = new ActingData(lastValue, [this] { callBack(); });
        qzObj* const sender = objects[from].real.get();
        call(sending, [=, out = objects[from].out] { sender->sendData(out, data, how); });
    }

    void distribute(unsigned) {
        call({0, {}, unsigned(queue.size())}, [] { qz_theEventHandler->distributeEvents(); });
    }

    static void receive(void* input, float value) {
        Input& to = *static_cast<Input*>(input);
        to.program.received(to, static_cast<int>(value));
    }

    void received(Input& input, int value) {
        Call& current = calls.back();
        if (current.sent) {
            ASSERT_TRUE(!current.toDeliver.empty() && value == current.sent);
            ASSERT_EQ(current.toDeliver.front().to, &input);
            current.toDeliver.pop_front();
        } else {
            ASSERT_TRUE(current.budget-- > 0 && !queue.empty());
            ASSERT_EQ(queue.front(), std::make_pair(&input, value));
            queue.pop_front();
        }
        callBack();
    }

    static constexpr unsigned size = 5;
    std::mt19937 random;
    unsigned steps = 0;
    int lastValue = 0;
    Object objects[size] = {};
    std::deque<Input> inputs;
    std::list<Connection> connections;
    std::list<std::pair<Input*, int>> queue; // of values to be delivered
    std::deque<Call> calls;
};

TEST(Reentrancy, RandomProgramsAgreeWithTheModel) {
    const Dataflow flow;
    for (unsigned seed = 0; seed < 300 && !HasFailure(); ++seed)
        Program program(seed);
}

} // namespace
