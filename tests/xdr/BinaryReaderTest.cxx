// What the binary reader makes of good streams, and of everything else.
#include "xdr/BinaryReader.h"

#include <climits>
#include <csignal>
#include <fstream>
#include <functional>
#include <numeric>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "support/AllocationCounter.h"
#include "support/BinaryRecords.h"
#include "support/Everything.h"
#include "support/MemoryStream.h"
#include "util/detail/RawMemory.h"
#include "xdr/BinaryGraphWriter.h"

namespace {

using testing::KilledBySignal;

// An object whose members are what `members` transcribes.
struct Box : qzXDRObj {
    qzTypeObj& getTypeObj() const override;
    static std::function<unsigned char(Box&, qzTranscriber&)> members;
    static void* newInstance(qzTypeObj&) { return new Box; }
    static void deleteInstance(void* box) { delete static_cast<Box*>(box); }
    static unsigned char xdr(void* box, qzTranscriber& t) {
        return members(*static_cast<Box*>(box), t);
    }
    unsigned words[2] = {};
    short halves[2] = {};
    double precise = 0;
    char* text = nullptr;
    int* ints = nullptr;
    Box* other = nullptr;
    Box* another = nullptr;
    qzStr string;
    qzStr second;
};
std::function<unsigned char(Box&, qzTranscriber&)> Box::members;
qzTypeObj boxType("Box", 1, Box::newInstance, Box::deleteInstance, Box::xdr);
qzTypeObj& Box::getTypeObj() const { return boxType; }
qzTypeObj abstractType("Abstract", 1, nullptr, nullptr, Box::xdr);

qzTypeObj weightType("Weight", 1, nullptr, nullptr, [](void* part, qzTranscriber& t) {
    return t.xdr(static_cast<double*>(part), 1);
});

unsigned char pointTo(Box*& member, Box& owner, qzTranscriber& t) {
    return t.xdr(&member, nullptr, boxType, &owner, nullptr);
}

const std::string host = half(0x1122) + word(0x33445566);

struct OpenReader : qzBinaryReader {
    using qzBinaryReader::floatsVAX;
    using qzBinaryReader::qzBinaryReader;
    using qzBinaryReader::work;
};

struct Reading {
    explicit Reading(const std::string& bytes, short testShort = 0x1122, long testLong = 0x33445566)
        : reader(new MemoryStream(bytes), testShort, testLong, "ieee") {}
    Box* box() { return static_cast<Box*>(reader.readObject(boxType)); }
    OpenReader reader;
};

// The header of the first Box, whose type has id 2 and which has id 1 itself.
std::string box(const std::string& data) {
    return definition(2, "Box") + record(10, data, word(1) + word(2) + word(1));
}
std::string reference(unsigned kind, unsigned id, const std::string& data = "") {
    return record(kind, data, word(id) + word(0));
}
std::string array(unsigned tag, unsigned id, const std::string& data) {
    return record(tag, data, word(id) + word(static_cast<unsigned>(data.size())));
}

// What reading the records ends in: "root", "null" or the fatal message.
std::string outcome(const std::string& records) {
    int ends[2];
    if (pipe(ends) != 0) return "no pipe";
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGABRT, [](int) { _exit(0); });
        dup2(ends[1], STDERR_FILENO);
        const char* const end = Reading(records).reader.readObject(boxType) ? "root\n" : "null\n";
        if (write(STDERR_FILENO, end, 5) != 5) _exit(1);
        _exit(0);
    }
    close(ends[1]);
    std::string said;
    char c;
    while (read(ends[0], &c, 1) == 1)
        said += c;
    close(ends[0]);
    int status = 1;
    waitpid(child, &status, 0);
    if (status != 0 || said.empty()) return "died otherwise: " + said;
    return said.substr(0, said.size() - 1);
}

TEST(qzBinaryReader, ForeignOrderSwapsShortsAndLongsOnly) {
    Box::members = [](Box& b, qzTranscriber& t) -> unsigned char {
        return t.xdr(b.halves, 2) && t.xdr(b.words, 2) && t.xdr(&b.precise, 1) && t.xdr(&b.ints, 2);
    };
    const double quarter = 0.25;
    const std::string precise(reinterpret_cast<const char*>(&quarter), 8);
    const struct {
        short testShort;
        unsigned testLong;
        const char* octets; // of 0x01020304
    } orders[] = {{0x1122, 0x33445566, "\4\3\2\1"},
                  {0x2211, 0x66554433, "\1\2\3\4"},
                  {0x1122, 0x44336655, "\3\4\1\2"},
                  {0x2211, 0x55663344, "\2\1\4\3"}};
    for (const auto& order : orders) {
        SCOPED_TRACE(order.testLong);
        const std::string number(order.octets, 4);
        const std::string halves =
            order.testShort == 0x1122 ? half(258) + half(3) : half(513) + half(0x300);
        Reading reading(box(halves + number + number + precise) + reference(3, 3) +
                            array(7, 3, number + number),
                        order.testShort, order.testLong);
        Box* const b = reading.box();
        ASSERT_TRUE(b);
        EXPECT_EQ(b->halves[0], 258);
        EXPECT_EQ(b->halves[1], 3);
        EXPECT_EQ(b->words[1], 0x01020304u);
        EXPECT_EQ(b->precise, 0.25);
        EXPECT_EQ(b->ints[1], 0x01020304);
        qzRawFree(b->ints);
        delete b;
    }
}

TEST(qzBinaryReader, PointersConsumeEightBytesOfFields) {
    Box::members = [](Box& b, qzTranscriber& t) { return pointTo(b.other, b, t); };
    EXPECT_EQ(outcome(box("") + reference(12, 1)), "root");
    EXPECT_EQ(outcome(box("") + record(12, "", word(1))), "XXX error handling is missing");
}

TEST(qzBinaryReader, ForwardReferencesToKnownThingsAreNull) {
    Box marker;
    Box::members = [&marker](Box& b, qzTranscriber& t) -> unsigned char {
        b.another = &marker;
        b.ints = reinterpret_cast<int*>(&marker);
        return pointTo(b.other, b, t) && pointTo(b.another, b, t) && t.xdr(&b.ints, 1) &&
               t.xdr(&b.text);
    };
    Reading reading(box("") + reference(12, 1) + reference(12, 5) + reference(4, 6) +
                    reference(3, 4) + array(5, 4, "ab"));
    Box* const b = reading.box();
    ASSERT_TRUE(b);
    EXPECT_EQ(b->other, b);
    EXPECT_EQ(b->another, nullptr);
    EXPECT_EQ(b->ints, nullptr);
    EXPECT_STREQ(b->text, "ab"); // with a NUL that the stream does not have
    qzRawFree(b->text);
    delete b;
}

TEST(qzBinaryReader, RootIsWhatTheStreamSays) {
    Box::members = [](Box& b, qzTranscriber& t) { return t.xdr(b.words, 1); };
    Reading reading(box(word(5)) + record(10, word(6), word(3) + word(2) + word(1)));
    for (unsigned expected : {5u, 6u}) {
        Box* const b = static_cast<Box*>(reading.reader.readObject(abstractType));
        ASSERT_TRUE(b);
        EXPECT_EQ(b->words[0], expected);
        delete b;
    }
    EXPECT_EQ(reading.box(), nullptr);
}

TEST(qzBinaryReader, IdsAndMembersThatWaitLastUntilReset) {
    Box* last = nullptr;
    Box::members = [&last](Box& b, qzTranscriber& t) -> unsigned char {
        last = &b;
        return pointTo(b.other, b, t) && pointTo(b.another, b, t);
    };
    const std::string again = record(10, "", word(3) + word(2) + word(1));
    Reading reading(box("") + reference(12, 1) + reference(12, 1) + again + reference(12, 1) +
                    record(1, "") + again + reference(11, 4) + reference(11, 5));
    Box* const first = reading.box();
    Box* const second = reading.box();
    ASSERT_TRUE(first && second);
    EXPECT_EQ(second->other, first);
    EXPECT_EQ(second->another, nullptr);
    EXPECT_EQ(reading.box(), nullptr); // the stream ends
    EXPECT_EQ(reading.reader.work.size(), 1u);
    for (Box* b : {first, second, last})
        delete b;
    reading.reader.reset();
    EXPECT_EQ(reading.reader.work.size(), 0u);
    EXPECT_EQ(outcome(again), "format error"); // nobody has told of type 2
}

TEST(qzBinaryReader, BrokenStreamsEndInTheirMessage) {
    const auto objects = [](Box& b, qzTranscriber& t) -> unsigned char {
        return pointTo(b.other, b, t);
    };
    const auto ints = [](Box& b, qzTranscriber& t) { return t.xdr(&b.ints, 2); };
    const auto strings = [](Box& b, qzTranscriber& t) -> unsigned char {
        return b.string.xdr(t) && b.second.xdr(t);
    };
    const auto stringAndText = [](Box& b, qzTranscriber& t) -> unsigned char {
        return b.string.xdr(t) && t.xdr(&b.text);
    };
    const auto part = [](Box& b, qzTranscriber& t) -> unsigned char {
        return t.xdr(weightType, &b, &b.precise) && t.xdr(weightType, &b, &b.precise);
    };
    const auto sets = [](Box&, qzTranscriber& t) -> unsigned char {
        qzStrSet first, second;
        return first.xdr(t) && second.xdr(t);
    };
    const auto nothing = [](Box&, qzTranscriber&) -> unsigned char { return 1; };
    const auto tooMuchOnce = [](Box& b, qzTranscriber& t) -> unsigned char {
        char* const bytes = reinterpret_cast<char*>(b.words);
        return t.xdr(bytes, 2) && !t.xdr(bytes, 8) && !t.xdr(bytes, 3);
    };
    // Chains without a key in more than 32 megabytes.
    const std::string chains = word(0) + word(8) + word(0x3000000 / sizeof(void*));
    const std::string two = word(2) + reference(3, 3); // a string of one character, to come
    const struct {
        std::function<unsigned char(Box&, qzTranscriber&)> members;
        std::string records;
        const char* expected;
    } rows[] = {
        {nothing, box(""), "root"},
        {nothing, "", "null"},
        {nothing, record(15, ""), "Whoops!"},
        {nothing, "\x4f", "null"}, // the length comes first
        {nothing, record(16, ""), "Whoops!"},
        {nothing, record(63, ""), "Whoops!"},
        {nothing, definition(1, "Nobody"), "unknown type Nobody"},
        {nothing, definition(1, "Abstract") + record(10, "", word(2) + word(1) + word(1)),
         "unknown type Abstract"},
        {nothing, record(10, "", word(1) + word(2) + word(1)), "format error"}, // no such type
        {nothing, record(2, "", word(2)) + std::string(70000, 'x'), "format error"},
        {nothing, definition(2, "Box") + record(10, "", word(1) + word(2) + word(2)),
         "XXX version error handling is missing"},
        // More than a record holds, whether or not it is there.
        {nothing, "\x80\x01\x02", "format error"},
        {nothing, "\xc0\xff\xff\xff\xff", "format error"},
        {nothing, array(5, 1, "abc"), "XXX baddest news"}, // an array as root
        {nothing, record(1, ""), "XXX baddest news"},
        {objects, box("") + record(1, ""), "root"},
        {objects, box("") + reference(11, 3), "null"},
        {objects,
         box("") + reference(11, ~0u) + record(10, "", word(~0u) + word(2) + word(1)) +
             record(1, ""),
         "root"},
        {objects, box("") + reference(11, 3) + record(1, ""), "XXX baddest news"},
        {objects, box("") + reference(3, 3), "XXX bad news!"},
        {objects, box("") + reference(12, 2), "XXX bad news!"}, // a type
        {objects, box("") + reference(11, 3) + array(5, 3, "abc"), "XXX bad news!"},
        {objects, box("x"), "XXX error handling is missing"},
        {tooMuchOnce, box("abcdef"), "root"},
        {ints, box("") + record(1, ""), "format error"},
        {ints, box("") + reference(4, 1), "format error"}, // an object
        {ints, box("") + reference(3, 2), "format error"}, // a type
        {ints, box("") + reference(3, 3) + array(7, 3, word(1)), "format error"},
        {ints, box("") + reference(3, 3) + array(7, 3, "1234567"), "format error"},
        {ints, box("") + reference(3, 3) + record(7, "", word(3) + word(0xfffffffc)), "null"},
        {ints, box("") + reference(3, 3) + array(7, 3, word(1) + word(2)), "root"},
        {strings, box(two + word(1)) + array(5, 3, std::string("a", 2)), "format error"},
        {strings, box(word(2)) + reference(3, 3, word(1)) + array(5, 3, std::string("a", 2)),
         "root"},
        {strings, box(word(2)) + reference(3, 3, word(1)) + array(5, 3, "ab"), "format error"},
        {strings, box(word(3)) + reference(3, 3, word(1)) + array(5, 3, std::string("a", 2)),
         "format error"},
        {strings, box(word(0)), "XXX error handling is missing"},
        {strings, box(word(2)) + reference(4, 3), "XXX error handling is missing"},
        // Two owners of one text.
        {strings,
         box(word(2)) + reference(3, 3, word(2)) + reference(3, 3) +
             array(5, 3, std::string("a", 2)),
         "format error"},
        {stringAndText,
         box(word(2)) + reference(3, 3) + reference(3, 3) + array(5, 3, std::string("a", 2)),
         "format error"},
        {sets, box(chains + chains), "XXX error handling is missing"},
        {part, box("") + reference(13, 3, word(0) + word(0)) + reference(14, 3), "root"},
        {part, box("") + reference(13, 3, word(0) + word(0)) + reference(13, 3),
         "XXX new base for old base"},
        {part, box("") + reference(13, 3, word(0) + word(0)) + reference(13, 4),
         "XXX new base for old base"}, // the same part under another id
        {part, box("") + reference(14, 3), "XXX old base previously unseen"},
        {part, box("") + reference(11, 3), "XXX bad news!"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        Box::members = row.members;
        EXPECT_EQ(outcome(row.records), row.expected);
    }
}

TEST(qzBinaryReaderDeathTest, UnusableHeaders) {
    const auto read = [](short testShort, long testLong, const char* format) {
        qzBinaryReader(nullptr, testShort, testLong, format);
    };
    EXPECT_EXIT(read(0x1123, 0x33445566, "ieee"), KilledBySignal(SIGABRT),
                "^qzBinaryReader: unknown short ordering 33445566\n$");
    EXPECT_EXIT(read(0x1122, 0x33445567, "ieee"), KilledBySignal(SIGABRT),
                "^qzBinaryReader: unknown long ordering 33445567\n$");
    EXPECT_EXIT(read(0x1122, 0x33445566, "ieee "), KilledBySignal(SIGABRT),
                "^qzBinaryReader: unsupported floating point format ieee \n$");
    EXPECT_EXIT(Reading("").reader.writeObject(nullptr, nullptr), KilledBySignal(SIGABRT),
                "^tried to invoke qzBinaryReader::writeObject\n$");
    Reading reading("");
    EXPECT_EXIT(OpenReader::floatsVAX(reading.reader, nullptr, 0), KilledBySignal(SIGABRT),
                "^qzBinaryReader_floatsVAX: not implemented\n$");
}

// Graphs

std::string writtenGraph(Everything& root) {
    MemoryStream* const stream = new MemoryStream(64u << 20);
    qzTranscriber::changeDefaultWriter(makeGraphWriter);
    qzTranscriber* const writer = qzTranscriber::getWriter(stream);
    qzTranscriber::resetToDefaultWriter();
    EXPECT_TRUE(writer->writeObject(&root, &root));
    const std::string bytes = stream->take();
    delete writer;
    return bytes;
}

Everything* readGraph(const std::string& bytes) {
    qzTranscriber::addTranscriber("qzBinaryWriter", makeBinaryReader);
    qzTranscriber* const reader = qzTranscriber::getReader(new MemoryStream(bytes));
    void* const root = reader->readObject(Everything::type);
    delete reader;
    return static_cast<Everything*>(root);
}

// Frees what a test made and read.
struct Cleanup {
    ~Cleanup() { Everything::destroyAll(); }
};

TEST(qzBinaryGraphWriter, RecordsCarryWhatReadersConsume) {
    Box::members = [](Box& b, qzTranscriber& t) -> unsigned char {
        return t.xdr(&b.other, &b, boxType, &b, nullptr) &&
               t.xdr(&b.another, &b, boxType, &b, nullptr) && t.xdr(&b.ints, 1) && t.xdr(&b.text);
    };
    int one = 1;
    Box root, child;
    root.other = root.another = &child;
    child.other = &root;
    root.ints = child.ints = &one;
    MemoryStream* const stream = new MemoryStream(1000);
    qzBinaryGraphWriter writer(stream);
    ASSERT_TRUE(writer.writeObject(&root, &root));
    EXPECT_EQ(stream->take(), box("") + reference(11, 3) + reference(11, 3) +
                                  record(3, "", word(4) + word(4)) + reference(4, 0) +
                                  array(7, 4, word(1)) +
                                  record(10, "", word(3) + word(2) + word(1)) + reference(12, 1) +
                                  record(1, "") + reference(4, 4) + reference(4, 0));
}

// Also where an earlier body has put it: each object is built from its own records.
TEST(qzBinaryGraphWriter, EachBodyHasItsParts) {
    Box::members = [](Box& b, qzTranscriber& t) -> unsigned char {
        return t.xdr(weightType, &b, &b.precise) && t.xdr(weightType, &b, &b.precise);
    };
    Box root;
    MemoryStream* const stream = new MemoryStream(1000);
    qzBinaryGraphWriter writer(stream);
    ASSERT_TRUE(writer.writeObject(&root, &root) && writer.writeObject(&root, &root));
    const std::string weight(8, '\0');
    EXPECT_EQ(stream->take(), box("") + reference(13, 3, weight) + reference(14, 3) +
                                  record(10, "", word(4) + word(2) + word(1)) +
                                  reference(13, 5, weight) + reference(14, 5));
}

TEST(qzBinaryGraphWriter, EverythingSharedStaysSharedAndEveryCutIsNoticed) {
    const Cleanup cleanup;
    Everything& root = Everything::make()->fillIn();
    Everything& child = Everything::make()->fillIn();
    root.left = root.right = &child;
    child.left = &root;
    child.right = &child;
    qzRawFree(child.shorts);
    child.shorts = root.shorts;
    const std::string bytes = writtenGraph(root);

    const Everything* const back = readGraph(bytes);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->sum(), root.sum());
    EXPECT_EQ(back->left->sum(), child.sum());
    EXPECT_EQ(back->left, back->right);
    EXPECT_EQ(back->left->left, back);
    EXPECT_EQ(back->left->right, back->left);
    EXPECT_EQ(back->left->shorts, back->shorts);
    EXPECT_NE(back->left->ints, back->ints);
    EXPECT_TRUE(back->strings[1] == "second" && back->strArray[0] == "element");
    EXPECT_TRUE(back->dictionary.find("key") && back->set.contains("member"));

    const std::size_t header = 26;
    std::set<std::string> ends;
    for (std::size_t cut = 0; cut < bytes.size() - header; cut += 13)
        ends.insert(outcome(bytes.substr(header, cut)));
    EXPECT_EQ(ends, (std::set<std::string>{"null", "XXX error handling is missing"}));
}

// More than gets its room before it comes; strings that wait for text move.
TEST(qzBinaryGraphWriter, LargeArraysComeBack) {
    const Cleanup cleanup;
    Everything& root = *Everything::make();
    const unsigned n = 140000;
    root.strArray.resize(n);
    for (unsigned i = 0; i < n; i += 7)
        root.strArray[i] = std::to_string(i).c_str();
    root.n = 700001;
    root.ints = static_cast<int*>(std::malloc(root.n * sizeof(int)));
    std::iota(root.ints, root.ints + root.n, 0);
    const Everything* const back = readGraph(writtenGraph(root));
    ASSERT_TRUE(back);
    EXPECT_TRUE(std::equal(root.ints, root.ints + root.n, back->ints));
    ASSERT_EQ(back->strArray.length(), n);
    for (unsigned i = 0; i < n; ++i)
        ASSERT_EQ(std::string(back->strArray[i].data), i % 7 ? "" : std::to_string(i));
}

TEST(qzBinaryGraphWriter, LongChainsNeedNoRecursion) {
    const Cleanup cleanup;
    Everything* const root = Everything::make();
    Everything* last = root;
    const unsigned n = 100000;
    for (unsigned i = 1; i < n; ++i, last = last->left) {
        last->left = Everything::make();
        last->right = root;
        last->number = int(i);
    }
    unsigned length = 0;
    const Everything* const back = readGraph(writtenGraph(*root));
    for (const Everything* node = back; node; node = node->left) {
        ++length;
        ASSERT_TRUE(!node->left || (node->right == back && node->number == int(length)));
    }
    EXPECT_EQ(length, n);
}

// Ids go on rising, and what a graph costs is not to rise with them.
TEST(qzBinaryGraphWriter, GraphsAfterResetsTakeNoMoreMemory) {
    if (const char* obstacle = AllocationCounter::obstacle()) GTEST_SKIP() << obstacle;
    const Cleanup cleanup;
    Everything& root = Everything::make()->fillIn();
    const unsigned n = 300;
    Everything::made().reserve(n + 1);
    MemoryStream* const stream = new MemoryStream(1 << 20);
    qzBinaryGraphWriter writer(stream);
    for (unsigned i = 0; i < n; ++i) {
        ASSERT_TRUE(writer.writeObject(&root, &root));
        writer.reset();
    }
    qzBinaryReader reader(new MemoryStream(stream->take()), 0x1122, 0x33445566, "ieee");
    std::vector<unsigned> costs(n);
    for (unsigned& cost : costs) {
        const AllocationCounter counter;
        ASSERT_TRUE(reader.readObject(Everything::type));
        reader.reset();
        cost = counter.counts().allocations;
    }
    EXPECT_LE(costs[n - 1], costs[1] + 2); // which may lie in one chunk more
}

// The file was written by an i386 build; each build writes the same and reads it.
TEST(qzBinaryGraphWriter, StreamsAreTheSameOnEveryTarget) {
    const Cleanup cleanup;
    std::ifstream file(ORVIKQZDS_STREAMS "/everything.stream", std::ios::binary);
    std::ostringstream contents;
    contents << file.rdbuf();
    Everything& root = Everything::make()->fillIn();
    root.left = &root;
    EXPECT_EQ(writtenGraph(root), contents.str());
    ASSERT_FALSE(contents.str().empty());
    const Everything* const back = readGraph(contents.str());
    ASSERT_TRUE(back);
    EXPECT_EQ(back->sum(), root.sum());
}

} // namespace
