// Objects to a file in memory and back, beside the binary archives of
// Boost.Serialization, cereal and Qt's QDataStream: an array of ints, a dictionary
// of strings, a graph of linked nodes.
//
// "objects" is what the objects take on the heap, in bytes, and "memory" the most
// that the process had of resident memory in one run, objects included, as a
// multiple of that.
#include <fcntl.h>
#include <malloc.h>
#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#include <QtCore/QByteArray>
#include <QtCore/QDataStream>
#include <QtCore/QFile>
#include <QtCore/QHash>
#include <QtCore/QVector>
#include <benchmark/benchmark.h>
#include <boost/archive/binary_iarchive.hpp>
#include <boost/archive/binary_oarchive.hpp>
#include <boost/serialization/string.hpp>
#include <boost/serialization/unordered_map.hpp>
#include <boost/serialization/vector.hpp>
#include <cereal/archives/binary.hpp>
#include <cereal/types/memory.hpp>
#include <cereal/types/string.hpp>
#include <cereal/types/unordered_map.hpp>
#include <cereal/types/vector.hpp>

#include "util/IntArray.h"
#include "util/StrStrDictionary.h"
#include "xdr/BinaryGraphWriter.h"
#include "xdr/BinaryReader.h"
#include "xdr/StdioStream.h"

namespace {

// The file, which no disk slows down.

class File {
  public:
    File() : fd(memfd_create("TranscriptionBench", 0)) {
        std::snprintf(name, sizeof name, "/proc/self/fd/%d", fd);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() { close(fd); }

    const char* path() const { return name; }
    void clear() {
        if (ftruncate(fd, 0) != 0) std::perror(name);
    }

  private:
    int fd;
    char name[32];
};

// Memory

std::size_t heapInUse() {
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

// A line of /proc/self/status, in bytes.
double statusBytes(const char* field) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.compare(0, std::strlen(field), field) == 0)
            return std::stod(line.substr(std::strlen(field) + 1)) * 1024;
    return 0;
}

template <class Work> double residentPeakOf(Work work) {
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5"; // forgets the peak so far
    const double before = statusBytes("VmRSS");
    work();
    return statusBytes("VmHWM") - before;
}

// Runs the work on a stack of a gigabyte: the peers write and read linked nodes by
// recursion.
void onLargeStack(std::function<void()> work) {
    const std::size_t size = 1u << 30;
    void* const stack = mmap(nullptr, size, PROT_READ | PROT_WRITE,
                             MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (stack == MAP_FAILED) return std::perror("stack");
    static std::function<void()> entry;
    entry = std::move(work);
    ucontext_t here, there;
    getcontext(&there);
    there.uc_stack = {stack, 0, size};
    there.uc_link = &here;
    makecontext(
        &there, [] { entry(); }, 0);
    swapcontext(&here, &there);
    munmap(stack, size);
}

// What is written

struct Text {
    template <class... Values> explicit Text(const char* format, Values... values) {
        std::snprintf(text, sizeof text, format, values...);
    }
    operator const char*() const { return text; }
    char text[40];
};

template <class Put> void forInts(unsigned n, Put put) {
    std::mt19937 random(4711);
    for (unsigned i = 0; i < n; ++i)
        put(static_cast<int>(random()));
}

// The keys differ in their first eight characters.
template <class Put> void forPairs(unsigned n, Put put) {
    std::mt19937 random(4711);
    for (unsigned i = 0; i < n; ++i)
        put(Text("%08x-%u", static_cast<unsigned>(random()), i), Text("the value of number %u", i));
}

// Nodes in a row, each of which refers to any other one, too. Link is what the
// library calls a pointer to one.
template <class Link> struct Graph {
    Graph() : first() {}
    Graph(const Graph&) = delete;
    Graph& operator=(const Graph&) = delete;
    ~Graph() {
        for (Link node = first; node;) {
            const Link next = node->next;
            node->next = node->other = Link();
            release(node);
            node = next;
        }
    }
    template <class T> static void release(std::shared_ptr<T>&) {}
    template <class T> static void release(T* node) { delete node; }

    void fill(unsigned n) {
        using Node = typename std::pointer_traits<Link>::element_type;
        std::mt19937 random(4711);
        std::vector<Link> nodes;
        for (unsigned i = 0; i < n; ++i)
            nodes.emplace_back(new Node(static_cast<int>(i), Text("node %u", i).text));
        for (unsigned i = 0; i < n; ++i) {
            if (i + 1 < n) nodes[i]->next = nodes[i + 1];
            nodes[i]->other = nodes[random() % n];
        }
        first = nodes[0];
    }
    unsigned length() const {
        unsigned n = 0;
        for (const Link* link = &first; *link && (*link)->other; link = &(*link)->next)
            ++n;
        return n;
    }
    template <class Archive> void serialize(Archive& archive, unsigned) { archive& first; }

    Link first;
};

// The libraries: how they write and read, and what.

struct Qz {
    struct Node : qzXDRObj {
        Node() : number(0), next(nullptr), other(nullptr) {}
        Node(int number, const char* name)
            : number(number), name(name), next(nullptr), other(nullptr) {}

        static qzTypeObj type;
        static void* newInstance(qzTypeObj&) { return new Node; }
        static void deleteInstance(void* node) { delete static_cast<Node*>(node); }
        static unsigned char xdr(void* node, qzTranscriber& t) {
            return static_cast<Node*>(node)->xdr(t);
        }
        const char* className() const override { return "Node"; }
        qzTypeObj& getTypeObj() const override { return type; }
        unsigned char xdr(qzTranscriber& t) override {
            return t.xdr(&number, 1) && name.xdr(t) && t.xdr(&next, next, type, this, nullptr) &&
                   t.xdr(&other, other, type, this, nullptr);
        }

        int number;
        qzStr name;
        Node* next;
        Node* other;
    };
    // The array that comes back is of the class that readers make for any.
    using Ints = qzArray;
    using Dictionary = qzStrStrDictionary;
    using Graph = ::Graph<Node*>;

    static qzXDRObj* rootOf(Graph& graph) { return graph.first; }
    static qzXDRObj* rootOf(qzXDRObj& object) { return &object; }
    template <class Value> static void write(const char* path, Value& value) {
        qzXDRObj* const root = rootOf(value);
        const std::unique_ptr<qzTranscriber> writer(
            qzTranscriber::getWriter(new qzStdioStream(path, qzStream::qzST_Write)));
        writer->writeObject(root, root);
    }

    static void* readRoot(const char* path, qzTypeObj& type) {
        const std::unique_ptr<qzTranscriber> reader(
            qzTranscriber::getReader(new qzStdioStream(path, qzStream::qzST_Read)));
        return reader->readObject(type);
    }
    static void read(const char* path, std::unique_ptr<Graph>& graph) {
        graph.reset(new Graph);
        graph->first = static_cast<Node*>(readRoot(path, Node::type));
    }
    template <class Value> static void read(const char* path, std::unique_ptr<Value>& value) {
        value.reset(static_cast<Value*>(readRoot(path, qzIntArray_type)));
    }
};
qzTypeObj Qz::Node::type("Node", 1, newInstance, deleteInstance, xdr);

template <class Output, class Input> struct Archives {
    using Ints = std::vector<int>;
    using Dictionary = std::unordered_map<std::string, std::string>;

    template <class Value> static void write(const char* path, const Value& value) {
        std::ofstream file(path, std::ios::binary);
        Output archive(file);
        archive << value;
    }
    template <class Value> static void read(const char* path, std::unique_ptr<Value>& value) {
        value.reset(new Value);
        std::ifstream file(path, std::ios::binary);
        Input archive(file);
        archive >> *value;
    }
};

struct Boost : Archives<boost::archive::binary_oarchive, boost::archive::binary_iarchive> {
    struct Node {
        explicit Node(int number = 0, const char* name = "")
            : number(number), name(name), next(nullptr), other(nullptr) {}
        template <class Archive> void serialize(Archive& archive, unsigned) {
            archive& number& name& next& other;
        }

        int number;
        std::string name;
        Node* next;
        Node* other;
    };
    using Graph = ::Graph<Node*>;
};

struct Cereal : Archives<cereal::BinaryOutputArchive, cereal::BinaryInputArchive> {
    struct Node {
        explicit Node(int number = 0, const char* name = "") : number(number), name(name) {}
        template <class Archive> void serialize(Archive& archive) {
            archive(number, name, next, other);
        }

        int number;
        std::string name;
        std::shared_ptr<Node> next;
        std::shared_ptr<Node> other;
    };
    using Graph = ::Graph<std::shared_ptr<Node>>;
};

// It knows nothing of pointers: nodes are numbered by hand, in the order of the row.
struct Qt5 {
    struct Node {
        Node(int number, const QByteArray& name)
            : number(number), name(name), next(nullptr), other(nullptr) {}
        int number;
        QByteArray name;
        Node* next;
        Node* other;
    };
    using Ints = QVector<int>;
    using Dictionary = QHash<QByteArray, QByteArray>;
    using Graph = ::Graph<Node*>;

    template <class Value> static void write(const char* path, const Value& value) {
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        QDataStream stream(&file);
        put(stream, value);
    }
    template <class Value> static void read(const char* path, std::unique_ptr<Value>& value) {
        value.reset(new Value);
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        QDataStream stream(&file);
        get(stream, *value);
    }

    template <class Value> static void put(QDataStream& stream, const Value& value) {
        stream << value;
    }
    template <class Value> static void get(QDataStream& stream, Value& value) { stream >> value; }

    static void put(QDataStream& stream, const Graph& graph) {
        QHash<Node*, quint32> numbers;
        quint32 n = 0;
        for (Node* node = graph.first; node; node = node->next)
            numbers.insert(node, n++);
        stream << n;
        for (Node* node = graph.first; node; node = node->next)
            stream << node->number << node->name << numbers.value(node->next, n)
                   << numbers.value(node->other, n);
    }
    static void get(QDataStream& stream, Graph& graph) {
        struct Links {
            quint32 next, other;
        };
        quint32 n;
        stream >> n;
        QVector<Node*> nodes;
        QVector<Links> links;
        for (quint32 i = 0; i < n; ++i) {
            qint32 number;
            QByteArray name;
            Links of;
            stream >> number >> name >> of.next >> of.other;
            nodes.append(new Node(number, name));
            links.append(of);
        }
        for (quint32 i = 0; i < n; ++i) {
            nodes[i]->next = nodes.value(links[i].next);
            nodes[i]->other = nodes.value(links[i].other);
        }
        graph.first = nodes.value(0);
    }
};

// The elements in one call, and nothing that tells how many they are.
struct Stdio {
    using Ints = std::vector<int>;
    static void write(const char* path, const Ints& ints) {
        FILE* const file = std::fopen(path, "wb");
        std::fwrite(ints.data(), sizeof(int), ints.size(), file);
        std::fclose(file);
    }
    static void read(const char* path, std::unique_ptr<Ints>& ints) {
        ints.reset(new Ints(1000000));
        FILE* const file = std::fopen(path, "rb");
        ints->resize(std::fread(ints->data(), sizeof(int), ints->size(), file));
        std::fclose(file);
    }
};

// The workloads

template <class Library> struct IntArray {
    using Value = typename Library::Ints;
    static std::unique_ptr<Value> make(unsigned n) {
        return filled(n, static_cast<Value*>(nullptr));
    }
    static std::unique_ptr<qzArray> filled(unsigned n, qzArray*) {
        std::unique_ptr<qzIntArray> ints(new qzIntArray);
        forInts(n, [&](int value) { ints->append(value); });
        return ints;
    }
    template <class Array> static std::unique_ptr<Array> filled(unsigned n, Array*) {
        std::unique_ptr<Array> ints(new Array);
        forInts(n, [&](int value) { ints->push_back(value); });
        return ints;
    }
    static unsigned size(const qzArray& ints) { return ints.length(); }
    template <class Array> static unsigned size(const Array& ints) { return ints.size(); }
};

// With a chain an entry where the library leaves that to its user; the readers of
// all make the table as large as the stream says, or as they need it.
template <class Library> struct Dictionary {
    using Value = typename Library::Dictionary;
    static std::unique_ptr<Value> make(unsigned n) {
        return filled(n | 1, n, static_cast<Value*>(nullptr));
    }
    static std::unique_ptr<qzStrStrDictionary> filled(unsigned chains, unsigned n,
                                                      qzStrStrDictionary*) {
        std::unique_ptr<qzStrStrDictionary> pairs(new qzStrStrDictionary(chains));
        forPairs(n, [&](const char* key, const char* value) { pairs->add(key, value); });
        return pairs;
    }
    template <class Map> static std::unique_ptr<Map> filled(unsigned, unsigned n, Map*) {
        std::unique_ptr<Map> pairs(new Map);
        forPairs(n, [&](const char* key, const char* value) { (*pairs)[key] = value; });
        return pairs;
    }
    static unsigned size(const Value& pairs) { return pairs.size(); }
};

template <class Library> struct DefaultChains : Dictionary<Library> {
    using typename Dictionary<Library>::Value;
    static std::unique_ptr<Value> make(unsigned n) {
        return Dictionary<Library>::filled(0, n, static_cast<Value*>(nullptr));
    }
};

template <class Library> struct LinkedNodes {
    using Value = typename Library::Graph;
    static std::unique_ptr<Value> make(unsigned n) {
        std::unique_ptr<Value> graph(new Value);
        graph->fill(n);
        return graph;
    }
    static unsigned size(const Value& graph) { return graph.length(); }
};

struct Installed {
    Installed() {
        qzTranscriber::addTranscriber("qzBinaryWriter", makeBinaryReader);
        qzTranscriber::changeDefaultWriter(makeGraphWriter);
    }
} installed;

void finish(benchmark::State& state, double objects, double memory) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["objects"] = objects;
    state.counters["memory"] = memory / objects;
}

template <class Library, template <class> class Workload> void BM_Write(benchmark::State& state) {
    onLargeStack([&state] {
        File file;
        const std::size_t before = heapInUse();
        const auto value = Workload<Library>::make(state.range(0));
        const double objects = heapInUse() - before;
        const auto write = [&] {
            file.clear();
            Library::write(file.path(), *value);
        };
        const double peak = residentPeakOf(write);
        for (auto _ : state)
            write();
        finish(state, objects, objects + peak);
    });
}

template <class Library, template <class> class Workload> void BM_Read(benchmark::State& state) {
    onLargeStack([&state] {
        File file;
        Library::write(file.path(), *Workload<Library>::make(state.range(0)));
        std::unique_ptr<typename Workload<Library>::Value> value;
        const std::size_t before = heapInUse();
        const double peak = residentPeakOf([&] { Library::read(file.path(), value); });
        const double objects = heapInUse() - before;
        if (Workload<Library>::size(*value) != state.range(0))
            state.SkipWithError("not all came back");
        for (auto _ : state) {
            state.PauseTiming();
            value.reset();
            state.ResumeTiming();
            Library::read(file.path(), value);
        }
        finish(state, objects, peak);
    });
}

void array(benchmark::internal::Benchmark* b) { b->Arg(1000000); }
void dictionary(benchmark::internal::Benchmark* b) { b->Arg(10000)->Arg(100000)->Arg(1000000); }
void small(benchmark::internal::Benchmark* b) { b->Arg(10000); }
void graph(benchmark::internal::Benchmark* b) { b->Arg(100000); }

#define BENCHMARK_LIBRARIES(Workload, sizes)                                                       \
    BENCHMARK_TEMPLATE(BM_Write, Qz, Workload)->Apply(sizes);                                      \
    BENCHMARK_TEMPLATE(BM_Write, Boost, Workload)->Apply(sizes);                                   \
    BENCHMARK_TEMPLATE(BM_Write, Cereal, Workload)->Apply(sizes);                                  \
    BENCHMARK_TEMPLATE(BM_Write, Qt5, Workload)->Apply(sizes);                                     \
    BENCHMARK_TEMPLATE(BM_Read, Qz, Workload)->Apply(sizes);                                       \
    BENCHMARK_TEMPLATE(BM_Read, Boost, Workload)->Apply(sizes);                                    \
    BENCHMARK_TEMPLATE(BM_Read, Cereal, Workload)->Apply(sizes);                                   \
    BENCHMARK_TEMPLATE(BM_Read, Qt5, Workload)->Apply(sizes)

BENCHMARK_LIBRARIES(IntArray, array);
BENCHMARK_TEMPLATE(BM_Write, Stdio, IntArray)->Apply(array);
BENCHMARK_TEMPLATE(BM_Read, Stdio, IntArray)->Apply(array);
BENCHMARK_LIBRARIES(Dictionary, dictionary);
BENCHMARK_LIBRARIES(LinkedNodes, graph);
BENCHMARK_TEMPLATE(BM_Write, Qz, DefaultChains)->Apply(small);
BENCHMARK_TEMPLATE(BM_Read, Qz, DefaultChains)->Apply(small);

} // namespace
