// Sending an int, at once and through the queue, beside the signals of Qt, GObject,
// Boost.Signals2 and libsigc++. Queues are those that programs use with them: Qt's
// own, GLib's main context, Boost.Asio, libevent; libsigc++ and libuv have none.
//
// Value is what receivers take: as an int the value goes as it is, as a float it is
// converted on the way, by a connection's converter here and by the compiler in the
// peers.
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

long received;

template <class Value> void receive(Value value) {
    benchmark::DoNotOptimize(value);
    ++received;
}

unsigned short typeCode(int) { return qzDT_int; }
unsigned short typeCode(float) { return qzDT_float; }

// Each sender with its receivers: send() delivers at once, queue() when deliver()
// is called.

template <class Value> class Qz {
  public:
    explicit Qz(unsigned n) : sender((qzInitializeToolkit(), new qzObj)) {
        output = sender->addOutput("value", qzDT_int);
        for (unsigned i = 0; i < n; ++i) {
            receivers.emplace_back(new qzObj);
            qzObj* const to = receivers.back().get();
            to->addInput("value", typeCode(Value()), to, reinterpret_cast<void (*)()>(take), 0);
            sender->connect("value", to, "value");
        }
    }
    void send(int value) { sender->sendInt(output, value, qzObj::qzSF_Immediate); }
    void queue(int value) { sender->sendInt(output, value, qzObj::qzSF_Queued); }
    void deliver() { qz_theEventHandler->distributeEvents(); }

  private:
    static void take(void*, Value value) { receive(value); }

    std::unique_ptr<qzObj> sender;
    qzOutputChannel* output;
    std::vector<std::unique_ptr<qzObj>> receivers;
};

template <class Value> class Qt5 {
  public:
    explicit Qt5(unsigned n) {
        static char name[] = "bench";
        static char* names[] = {name, nullptr};
        static int count = 1;
        static QCoreApplication application(count, names);
        for (unsigned i = 0; i < n; ++i) {
            receivers.emplace_back(new Receiver);
            Receiver* const to = receivers.back().get();
            QObject::connect(&direct, &QtSender::value, to, &Receiver::take, Qt::DirectConnection);
            QObject::connect(&queued, &QtSender::value, to, &Receiver::take, Qt::QueuedConnection);
        }
    }
    void send(int value) { Q_EMIT direct.value(value); }
    void queue(int value) { Q_EMIT queued.value(value); }
    void deliver() { QCoreApplication::sendPostedEvents(); }

  private:
    struct Receiver : QObject {
        void take(Value value) { receive(value); }
    };
    QtSender direct;
    QtSender queued;
    std::vector<std::unique_ptr<Receiver>> receivers;
};

template <class Value> class GLib {
  public:
    explicit GLib(unsigned n) : sender(static_cast<GObject*>(g_object_new(type(), nullptr))) {
        for (unsigned i = 0; i < n; ++i)
            g_signal_connect(sender, "value", G_CALLBACK(take), nullptr);
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
    static void take(GObject*, int value, gpointer) { receive(static_cast<Value>(value)); }

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

    GObject* sender;
};

template <class Value> class Boost {
  public:
    explicit Boost(unsigned n) : context(BOOST_ASIO_CONCURRENCY_HINT_UNSAFE) {
        for (unsigned i = 0; i < n; ++i)
            signal.connect([](Value value) { receive(value); });
    }
    void send(int value) { signal(value); }
    void queue(int value) {
        boost::asio::post(context, [this, value] { signal(value); });
    }
    void deliver() {
        context.restart();
        context.poll();
    }

  private:
    using Signature = boost::signals2::signal_type<
        void(int), boost::signals2::keywords::mutex_type<boost::signals2::dummy_mutex>>;
    typename Signature::type signal;
    boost::asio::io_context context;
};

template <class Value> class Sigc {
  public:
    explicit Sigc(unsigned n) : receivers(n) {
        for (Receiver& to : receivers)
            signal.connect(sigc::mem_fun(to, &Receiver::take));
    }
    void send(int value) { signal(value); }

  private:
    struct Receiver : sigc::trackable {
        void take(Value value) { receive(value); }
    };
    std::vector<Receiver> receivers;
    sigc::signal<void, int> signal;
};

// It has no senders: an event a value, for one receiver.
template <class Value> class Libevent {
  public:
    explicit Libevent(unsigned) : base(event_base_new()) {}
    Libevent(const Libevent&) = delete;
    Libevent& operator=(const Libevent&) = delete;
    ~Libevent() { event_base_free(base); }

    void queue(int value) { event_base_once(base, -1, EV_TIMEOUT, take, new int(value), nullptr); }
    void deliver() { event_base_loop(base, EVLOOP_ONCE | EVLOOP_NONBLOCK); }

  private:
    static void take(int, short, void* queued) {
        const std::unique_ptr<int> value(static_cast<int*>(queued));
        receive(static_cast<Value>(*value));
    }
    event_base* base;
};

// Of so many receivers.
template <class Sender> void BM_Send(benchmark::State& state) {
    Sender sender(state.range(0));
    received = 0;
    for (auto _ : state)
        sender.send(3);
    if (received != state.iterations() * state.range(0)) state.SkipWithError("lost");
    state.SetItemsProcessed(received);
}

// So many values to one receiver.
template <class Sender> void BM_Queue(benchmark::State& state) {
    Sender sender(1);
    received = 0;
    for (auto _ : state) {
        for (int i = 0; i < state.range(0); ++i)
            sender.queue(i);
        sender.deliver();
    }
    if (received != state.iterations() * state.range(0)) state.SkipWithError("lost");
    state.SetItemsProcessed(received);
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
