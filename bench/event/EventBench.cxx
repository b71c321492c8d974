// Sending an int, at once and through the queue, beside the signals of Qt, GObject,
// Boost.Signals2 and libsigc++. Queues are those that programs use with them: Qt's
// own, GLib's main context, Boost.Asio, libevent; libsigc++ and libuv have none.
//
// Value is what receivers take: as an int the value goes as it is, as a float it is
// converted on the way, by a connection's converter here and by the compiler in the
// peers.
//
// Each receiver counts for itself: with one count for all, what was measured of a
// hundred would be how long the processor takes to add to it a hundred times.
//
// All run in one thread; Signals2 and Asio are told so and take no locks.
#include <memory>
#include <string>
#include <typeinfo>
#include <vector>

#include <QtCore/QCoreApplication>
#include <benchmark/benchmark.h>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/signals2.hpp>
#include <event2/event.h>
#include <glib-object.h>
#include <sigc++/sigc++.h>

#include "event/DataTypes.h"
#include "event/EventHandler.h"
#include "event/GlobalOrder.h"
#include "event/QtSender.h"

namespace {

template <class Value> struct Receiver {
    void take(Value value) {
        last = value;
        ++received;
    }
    Value last;
    long received = 0;
};

// So many objects that are receivers.
template <class Object> class Receivers : public std::vector<Object> {
  public:
    using std::vector<Object>::vector;

    long received() const {
        long sum = 0;
        for (const Object& object : *this)
            sum += object.received;
        return sum;
    }
};

unsigned short typeCode(int) { return qzDT_int; }
unsigned short typeCode(float) { return qzDT_float; }

// Each sender with its receivers: send() delivers at once, queue() when deliver()
// is called.

template <class Value> class Qz {
  public:
    explicit Qz(unsigned n) : sender((qzInitializeToolkit(), new qzObj)), receivers(n) {
        output = sender->addOutput("value", qzDT_int);
        for (Object& to : receivers) {
            to.addInput("value", typeCode(Value()), &to, reinterpret_cast<void (*)()>(take), 0);
            sender->connect("value", &to, "value");
        }
    }
    void send(int value) { sender->sendInt(output, value, qzObj::qzSF_Immediate); }
    void queue(int value) { sender->sendInt(output, value, qzObj::qzSF_Queued); }
    void deliver() { qz_theEventHandler->distributeEvents(); }

    long received() const { return receivers.received(); }

  private:
    struct Object : qzObj, Receiver<Value> {};
    static void take(Object* to, Value value) { to->take(value); }

    std::unique_ptr<qzObj> sender;
    qzOutputChannel* output;
    Receivers<Object> receivers;
};

template <class Value> class Qt5 {
  public:
    explicit Qt5(unsigned n) : receivers(n) {
        static char name[] = "bench";
        static char* names[] = {name, nullptr};
        static int count = 1;
        static QCoreApplication application(count, names);
        for (Object& to : receivers) {
            QObject::connect(&direct, &QtSender::value, &to, &Object::take, Qt::DirectConnection);
            QObject::connect(&queued, &QtSender::value, &to, &Object::take, Qt::QueuedConnection);
        }
    }
    void send(int value) { Q_EMIT direct.value(value); }
    void queue(int value) { Q_EMIT queued.value(value); }
    void deliver() { QCoreApplication::sendPostedEvents(); }

    long received() const { return receivers.received(); }

  private:
    struct Object : QObject, Receiver<Value> {
        void take(Value value) { Receiver<Value>::take(value); }
    };
    QtSender direct;
    QtSender queued;
    Receivers<Object> receivers;
};

template <class Value> class GLib {
  public:
    explicit GLib(unsigned n)
        : receivers(n), sender(static_cast<GObject*>(g_object_new(type(), nullptr))) {
        for (Receiver<Value>& to : receivers)
            g_signal_connect(sender, "value", G_CALLBACK(take), &to);
    }
    GLib(const GLib&) = delete;
    GLib& operator=(const GLib&) = delete;
    ~GLib() { g_object_unref(sender); }

    void send(int value) { g_signal_emit(sender, signal, 0, value); }
    void queue(int value) {
        g_idle_add_full(G_PRIORITY_DEFAULT, sendQueued, new Queued{this, value},
                        [](gpointer queued) { delete static_cast<Queued*>(queued); });
    }
    void deliver() { g_main_context_iteration(nullptr, FALSE); }

    long received() const { return receivers.received(); }

  private:
    struct Queued {
        GLib* sender;
        int value;
    };
    static gboolean sendQueued(gpointer data) {
        const Queued& queued = *static_cast<Queued*>(data);
        queued.sender->send(queued.value);
        return G_SOURCE_REMOVE;
    }
    static void take(GObject*, int value, gpointer to) {
        static_cast<Receiver<Value>*>(to)->take(static_cast<Value>(value));
    }

    static GType type() {
        static const GType made = [] {
            const GType sender = g_type_register_static_simple(
                G_TYPE_OBJECT, (std::string("Sender_") + typeid(Value).name()).c_str(),
                sizeof(GObjectClass), nullptr, sizeof(GObject), nullptr, GTypeFlags());
            signal = g_signal_new("value", sender, G_SIGNAL_RUN_LAST, 0, nullptr, nullptr, nullptr,
                                  G_TYPE_NONE, 1, G_TYPE_INT);
            return sender;
        }();
        return made;
    }
    static inline guint signal;

    Receivers<Receiver<Value>> receivers;
    GObject* sender;
};

template <class Value> class Boost {
  public:
    explicit Boost(unsigned n) : receivers(n), context(BOOST_ASIO_CONCURRENCY_HINT_UNSAFE) {
        for (Receiver<Value>& to : receivers)
            signal.connect([&to](Value value) { to.take(value); });
    }
    void send(int value) { signal(value); }
    void queue(int value) {
        boost::asio::post(context, [this, value] { signal(value); });
    }
    void deliver() {
        context.restart();
        context.poll();
    }

    long received() const { return receivers.received(); }

  private:
    using Signature = boost::signals2::signal_type<
        void(int), boost::signals2::keywords::mutex_type<boost::signals2::dummy_mutex>>;
    Receivers<Receiver<Value>> receivers;
    typename Signature::type signal;
    boost::asio::io_context context;
};

template <class Value> class Sigc {
  public:
    explicit Sigc(unsigned n) : receivers(n) {
        for (Object& to : receivers)
            signal.connect(sigc::mem_fun(to, &Object::take));
    }
    void send(int value) { signal(value); }
    long received() const { return receivers.received(); }

  private:
    struct Object : sigc::trackable, Receiver<Value> {
        void take(Value value) { Receiver<Value>::take(value); }
    };
    Receivers<Object> receivers;
    sigc::signal<void, int> signal;
};

// It has no senders: an event a value, for one receiver.
template <class Value> class Libevent {
  public:
    explicit Libevent(unsigned) : receivers(1), base(event_base_new()) {}
    Libevent(const Libevent&) = delete;
    Libevent& operator=(const Libevent&) = delete;
    ~Libevent() { event_base_free(base); }

    void queue(int value) {
        Queued* const queued = new Queued{receivers.front(), value};
        event_base_once(base, -1, EV_TIMEOUT, take, queued, nullptr);
    }
    void deliver() { event_base_loop(base, EVLOOP_ONCE | EVLOOP_NONBLOCK); }

    long received() const { return receivers.received(); }

  private:
    struct Queued {
        Receiver<Value>& to;
        int value;
    };
    static void take(int, short, void* event) {
        const std::unique_ptr<Queued> queued(static_cast<Queued*>(event));
        queued->to.take(static_cast<Value>(queued->value));
    }
    Receivers<Receiver<Value>> receivers;
    event_base* base;
};

void checkReceived(benchmark::State& state, long received) {
    if (received != state.iterations() * state.range(0)) state.SkipWithError("lost");
    state.SetItemsProcessed(received);
}

// Of so many receivers.
template <class Sender> void BM_Send(benchmark::State& state) {
    Sender sender(state.range(0));
    for (auto _ : state)
        sender.send(3);
    checkReceived(state, sender.received());
}

// So many values to one receiver.
template <class Sender> void BM_Queue(benchmark::State& state) {
    Sender sender(1);
    for (auto _ : state) {
        for (int i = 0; i < state.range(0); ++i)
            sender.queue(i);
        sender.deliver();
    }
    checkReceived(state, sender.received());
}

void receivers(benchmark::internal::Benchmark* b) { b->Arg(1)->Arg(10)->Arg(100); }
void values(benchmark::internal::Benchmark* b) { b->Arg(100000); }

#define BENCHMARK_SENDERS(Value)                                                                   \
    BENCHMARK_TEMPLATE(BM_Send, Qz<Value>)->Apply(receivers);                                      \
    BENCHMARK_TEMPLATE(BM_Send, Qt5<Value>)->Apply(receivers);                                     \
    BENCHMARK_TEMPLATE(BM_Send, GLib<Value>)->Apply(receivers);                                    \
    BENCHMARK_TEMPLATE(BM_Send, Boost<Value>)->Apply(receivers);                                   \
    BENCHMARK_TEMPLATE(BM_Send, Sigc<Value>)->Apply(receivers);                                    \
    BENCHMARK_TEMPLATE(BM_Queue, Qz<Value>)->Apply(values);                                        \
    BENCHMARK_TEMPLATE(BM_Queue, Qt5<Value>)->Apply(values);                                       \
    BENCHMARK_TEMPLATE(BM_Queue, GLib<Value>)->Apply(values);                                      \
    BENCHMARK_TEMPLATE(BM_Queue, Boost<Value>)->Apply(values);                                     \
    BENCHMARK_TEMPLATE(BM_Queue, Libevent<Value>)->Apply(values)

BENCHMARK_SENDERS(int);
BENCHMARK_SENDERS(float);

} // namespace
