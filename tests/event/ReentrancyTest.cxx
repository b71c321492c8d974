// Random programs, whose receivers and destructors of values act as well, against
// a model that knows connections by number and the queue as a list.
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
    static inline unsigned receipts;

  private:
    struct Input { // what receivers are called with; stays when the channel goes
        Program& program;
        unsigned owner;
    };
    struct Connection {
        unsigned from, id;
        Input* to;
    };
    struct Object {
        std::unique_ptr<qzObj> real;
        qzOutputChannel* out;
        Input* in; // of the name
    };
    struct Call { // into the library, from outside or from a callback
        int sent = 0;
        std::deque<unsigned> toDeliver; // of an immediate send: connections
        unsigned budget = 0;            // of a distribution
    };

    unsigned below(unsigned n) { return random() % n; }

    void act() {
        using P = Program;
        static constexpr void (P::*actions[])(unsigned) = {
            &P::destroy, &P::addInput, &P::addInput, &P::removeInput, &P::addOutput, &P::connect,
            &P::connect, &P::connect,  &P::connect,  &P::connect,     &P::send,      &P::send,
            &P::send,    &P::send,     &P::send,     &P::distribute,  &P::distribute};
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
        for (unsigned id : calls.back().toDeliver)
            EXPECT_FALSE(standing(id));
        EXPECT_TRUE(calls.back().budget == 0 || queue.empty());
        calls.pop_back();
    }

    void destroy(unsigned i) {
        connections.remove_if([i](const Connection& c) { return c.from == i || c.to->owner == i; });
        queue.remove_if([i](const auto& message) { return message.first->owner == i; });
        objects[i].in = nullptr;
        call({}, [gone = objects[i].real.release()] { delete gone; });
    }

    void addOutput(unsigned i) {
        connections.remove_if([i](const Connection& c) { return c.from == i; });
        objects[i].out = objects[i].real->addOutput("out", qzDT_int);
    }

    void addInput(unsigned i) {
        inputs.push_back({*this, i});
        objects[i].in = &inputs.back();
        const bool converts = below(2);
        const auto function = converts ? reinterpret_cast<void (*)()>(receive<float>)
                                       : reinterpret_cast<void (*)()>(receive<int>);
        objects[i].real->addInput("in", converts ? qzDT_float : qzDT_int, objects[i].in, function,
                                  0);
    }

    void removeInput(unsigned i) {
        const Input* const old = std::exchange(objects[i].in, nullptr);
        connections.remove_if([old](const Connection& c) { return c.to == old; });
        queue.remove_if([old](const auto& message) { return message.first == old; });
        call({}, [&] { objects[i].real->removeInput("in"); });
    }

    void connect(unsigned from) {
        const Object &source = objects[from], &target = objects[below(size)];
        const auto same = [&](const Connection& c) { return c.from == from && c.to == target.in; };
        if (!target.real) return;
        if (below(5) == 0) {
            source.real->disconnect("out", target.real.get(), "in");
            connections.remove_if(same);
            return;
        }
        source.real->connect("out", target.real.get(), "in");
        if (target.in && std::none_of(connections.begin(), connections.end(), same))
            connections.push_back({from, ++lastId, target.in});
    }

    void send(unsigned from) {
        const auto how = static_cast<qzObj::qzSendFlags>(below(3));
        Call sending{++lastValue, {}, 0};
        for (const Connection& connection : connections) {
            if (connection.from != from) continue;
            if (how == qzObj::qzSF_Immediate)
                sending.toDeliver.push_back(connection.id);
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

    const Connection* standing(unsigned id) const {
        for (const Connection& connection : connections)
            if (connection.id == id) return &connection;
        return nullptr;
    }

    template <class T> static void receive(void* input, T value) {
        Input& to = *static_cast<Input*>(input);
        to.program.received(to, static_cast<int>(value));
    }

    void received(Input& input, int value) {
        ++receipts;
        Call& current = calls.back();
        if (current.sent) {
            const Connection* next = nullptr;
            while (!next && !current.toDeliver.empty()) {
                next = standing(current.toDeliver.front());
                current.toDeliver.pop_front();
            }
            ASSERT_TRUE(next && next->to == &input && value == current.sent);
        } else {
            ASSERT_TRUE(current.budget-- > 0 && !queue.empty());
            ASSERT_EQ(queue.front(), std::make_pair(&input, value));
            queue.pop_front();
        }
        callBack();
    }

    static constexpr unsigned size = 5;
    std::mt19937 random;
    unsigned steps = 0, lastId = 0;
    int lastValue = 0;
    Object objects[size] = {};
    std::deque<Input> inputs;
    std::list<Connection> connections;
    std::list<std::pair<Input*, int>> queue; // of values to be delivered
    std::deque<Call> calls;
};

TEST(Reentrancy, RandomProgramsAgreeWithTheModel) {
    const Dataflow flow;
    for (unsigned seed = 0; seed < 300 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        Program program(seed);
    }
    EXPECT_GT(Program::receipts, 20000u);
}

} // namespace
