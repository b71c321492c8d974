// What the binary reader makes of good streams, and of everything else.
#include "xdr/BinaryReader.h"

#include <csignal>
#include <numeric>
#include <unistd.h>

#include <gtest/gtest.h>

#include "support/AllocationCounter.h"
#include "support/BinaryRecords.h"
#include "support/Box.h"
#include "support/Everything.h"
#include "support/MemoryStream.h"
#include "xdr/BinaryGraphWriter.h"

namespace {

using testing::KilledBySignal;

struct Reading : qzBinaryReader {
    explicit Reading(const std::string& bytes, short testShort = 0x1122, long testLong = 0x33445566)
        : qzBinaryReader(new MemoryStream(bytes), testShort, testLong, "ieee") {}
    Box* box() { return static_cast<Box*>(readObject(Box::boxType)); }
    using qzBinaryReader::floatsVAX;
    using qzBinaryReader::work;
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
void expectEnd(const std::string& records, const std::string& expected) {
    const auto read = [&records] {
        std::fputs(Reading(records).box() ? "root\n" : "null\n", stderr);
        _exit(0); // nobody owns what a broken stream had brought
    };
    const auto isEnd = [](int status) { return status == 0 || WTERMSIG(status) == SIGABRT; };
    EXPECT_EXIT(read(), isEnd, "^" + expected + "\n$");
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
        std::free(b->ints);
        delete b;
    }
}

TEST(qzBinaryReader, PointersConsumeEightBytesOfFields) {
    Box::members = [](Box& b, qzTranscriber& t) { return pointTo(b.other, b, t); };
    expectEnd(box("") + reference(12, 1), "root");
    expectEnd(box("") + record(12, "", word(1)), "XXX error handling is missing");
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
    std::free(b->text);
    delete b;
}

TEST(qzBinaryReader, RootIsWhatTheStreamSays) {
    static qzTypeObj abstractType("Abstract", 1, nullptr, nullptr, Box::xdr);
    Box::members = [](Box& b, qzTranscriber& t) { return t.xdr(b.words, 1); };
    Reading reading(box(word(5)));
    Box* const b = static_cast<Box*>(reading.readObject(abstractType));
    ASSERT_TRUE(b);
    EXPECT_EQ(b->words[0], 5u);
    delete b;
    expectEnd(definition(1, "Abstract") + record(10, "", word(2) + word(1) + word(1)),
              "unknown type Abstract");
}

TEST(qzBinaryReader, IdsAndMembersThatWaitLastUntilReset) {
    Box* last = nullptr;
    Box::members = [&last](Box& b, qzTranscriber& t) -> unsigned char {
        last = &b;
        return pointTo(b.other, b, t) && pointTo(b.another, b, t) && t.xdr(&b.ints, 1);
    };
    Reading reading(box("") + record(1, "") + record(1, "") + reference(4, 0) +
                    record(10, "", word(3) + word(2) + word(1)) + reference(12, 1) +
                    reference(11, 4) + reference(3, 5));
    Box* const first = reading.box();
    EXPECT_EQ(reading.box(), nullptr); // the stream ends
    ASSERT_NE(last, first);
    EXPECT_EQ(last->other, first);
    EXPECT_EQ(reading.work.size(), 1u);
    reading.reset();
    EXPECT_EQ(reading.work.size(), 0u);
    delete first;
    delete last;
}

TEST(qzBinaryReader, BrokenStreamsEndInTheirMessage) {
    const auto nothing = [](Box&, qzTranscriber&) -> unsigned char { return 1; };
    const auto objects = [](Box& b, qzTranscriber& t) { return pointTo(b.other, b, t); };
    const auto ints = [](Box& b, qzTranscriber& t) { return t.xdr(&b.ints, 2); };
    const auto strings = [](Box& b, qzTranscriber& t) { return t.xdr(b.strings, 2); };
    const auto stringAndText = [](Box& b, qzTranscriber& t) -> unsigned char {
        return t.xdr(b.strings, 1) && t.xdr(&b.text);
    };
    const auto part = [](Box& b, qzTranscriber& t) -> unsigned char {
        return t.xdr(weightType, &b, &b.precise) && t.xdr(weightType, &b, &b.precise);
    };
    const auto sets = [](Box&, qzTranscriber& t) -> unsigned char {
        qzStrSet first, second;
        return first.xdr(t) && second.xdr(t);
    };
    // Chains without a key in more than 32 megabytes.
    const std::string chains = word(0) + word(8) + word(0x3000000 / sizeof(void*));
    const std::string newPart = box("") + reference(13, 3, word(0) + word(0));
    const std::string text = array(5, 3, std::string("a", 2)); // of a promised string
    const struct {
        Box::Members members;
        std::string records;
        const char* expected;
    } rows[] = {
        {nothing, "", "null"},
        {nothing, record(15, ""), "Whoops!"},
        {nothing, "\x4f", "null"}, // the length comes first
        {nothing, record(63, ""), "Whoops!"},
        {nothing, definition(1, "Nobody"), "unknown type Nobody"},
        {nothing, record(10, "", word(1) + word(2) + word(1)), "format error"}, // no such type
        {nothing, record(2, "", word(2)) + std::string(70000, 'x'), "format error"},
        {nothing, definition(2, "Box") + record(10, "", word(1) + word(2) + word(2)),
         "XXX version error handling is missing"},
        // More than a record holds, whether or not it is there.
        {nothing, "\x80\x01\x02", "format error"},
        {nothing, "\xc0\xff\xff\xff\xff", "format error"},
        {nothing, array(5, 1, "abc"), "XXX baddest news"}, // an array as root
        {objects, box("") + reference(11, 3), "null"},
        {objects,
         box("") + reference(11, ~0u) + record(10, "", word(~0u) + word(2) + word(1)) +
             record(1, ""),
         "root"},
        {objects, box("") + reference(11, 3) + record(1, ""), "XXX baddest news"},
        {objects, box("") + reference(3, 3), "XXX bad news!"},
        {objects, box("") + reference(12, 2), "XXX bad news!"}, // a type
        {objects, box("") + reference(11, 3) + array(5, 3, "abc"), "XXX bad news!"},
        {ints, box("") + record(1, ""), "format error"},
        {ints, box("") + reference(4, 1), "format error"}, // an object
        {ints, box("") + reference(3, 2), "format error"}, // a type
        {ints, box("") + reference(3, 3) + array(7, 3, word(1)), "format error"},
        {ints, box("") + reference(3, 3) + array(7, 3, "123456789"), "format error"},
        {ints, box("") + reference(3, 3) + record(7, "", word(3) + word(0xfffffffc)), "null"},
        {strings, box(word(2)) + reference(3, 3, word(1)) + text, "root"},
        {strings, box(word(2)) + reference(3, 3, word(1)) + array(5, 3, "ab"), "format error"},
        {strings, box(word(3)) + reference(3, 3, word(1)) + text, "format error"},
        {strings, box(word(2)) + reference(4, 3), "XXX error handling is missing"},
        // Two owners of one text.
        {strings, box(word(2)) + reference(3, 3, word(2)) + reference(3, 3) + text, "format error"},
        {stringAndText, box(word(2)) + reference(3, 3) + reference(3, 3) + text, "format error"},
        {sets, box(chains + chains), "XXX error handling is missing"},
        {part, newPart + reference(14, 3), "root"},
        {part, newPart + reference(13, 3), "XXX new base for old base"},
        {part, newPart + reference(13, 4), "XXX new base for old base"}, // the same part
        {part, box("") + reference(14, 3), "XXX old base previously unseen"},
        {part, box("") + reference(11, 3), "XXX bad news!"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        Box::members = row.members;
        expectEnd(row.records, row.expected);
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
    EXPECT_EXIT(Reading("").writeObject(nullptr, nullptr), KilledBySignal(SIGABRT),
                "^tried to invoke qzBinaryReader::writeObject\n$");
    Reading reading("");
    EXPECT_EXIT(Reading::floatsVAX(reading, nullptr, 0), KilledBySignal(SIGABRT),
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

TEST(qzBinaryGraphWriter, EverythingSharedStaysSharedAndEveryCutIsNoticed) {
    const Cleanup cleanup;
    Everything& root = Everything::make()->fillIn();
    Everything& child = *Everything::make();
    root.left = root.right = &child;
    child.left = &root;
    child.right = &child;
    child.n = root.n;
    child.shorts = root.shorts;
    const std::string bytes = writtenGraph(root);
    // Which an i386 build has written: each build writes the same and reads it.
    EXPECT_EQ(bytes, fileContent(ORVIKQZDS_STREAMS "/shared"));

    const Everything* const back = readGraph(bytes);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->sum(), root.sum());
    EXPECT_EQ(back->left->sum(), child.sum());
    EXPECT_EQ(back->left, back->right);
    EXPECT_EQ(back->left->left, back);
    EXPECT_EQ(back->left->right, back->left);
    EXPECT_EQ(back->left->shorts, back->shorts);
    EXPECT_EQ(back->left->ints, nullptr);
    EXPECT_TRUE(back->strings[1] == "second" && back->strArray[0] == "element");
    EXPECT_TRUE(back->dictionary.find("key") && back->set.contains("member"));

    const std::size_t header = 26;
    for (std::size_t cut = 0; cut < bytes.size() - header; cut += 13)
        expectEnd(bytes.substr(header, cut), "(null|XXX error handling is missing)");
}

// More than gets its room before it comes; strings that wait for text move.
TEST(qzBinaryGraphWriter, LargeArraysComeBack) {
    const Cleanup cleanup;
    Everything& root = *Everything::make();
    root.strArray.resize(140000);
    for (unsigned i = 0; i < root.strArray.length(); i += 7)
        root.strArray[i] = std::to_string(i).c_str();
    root.n = 700001;
    root.ints = static_cast<int*>(std::malloc(root.n * sizeof(int)));
    std::iota(root.ints, root.ints + root.n, 0);
    const Everything* const back = readGraph(writtenGraph(root));
    ASSERT_TRUE(back);
    EXPECT_TRUE(std::equal(root.ints, root.ints + root.n, back->ints));
    ASSERT_EQ(back->strArray.length(), root.strArray.length());
    for (unsigned i = 0; i < root.strArray.length(); ++i)
        ASSERT_TRUE(back->strArray[i] == root.strArray[i]) << i;
}

// In tables that grow with them.
TEST(qzBinaryGraphWriter, LongChainsNeedNoRecursion) {
    const Cleanup cleanup;
    const std::vector<Everything*>& made = Everything::made();
    const unsigned n = 100000;
    Everything::make();
    for (unsigned i = 1; i < n; ++i) {
        made[i - 1]->left = Everything::make();
        made[i]->right = made[i / 2];
    }
    readGraph(writtenGraph(*made[0]));
    ASSERT_EQ(made.size(), 2 * n);
    for (unsigned i = n + 1; i < 2 * n; ++i)
        ASSERT_TRUE(made[i - 1]->left == made[i] && made[i]->right == made[n + (i - n) / 2]);
}

// Ids go on rising, and what a graph costs is not to rise with them. Each body has
// its parts, also where an earlier one has put them.
TEST(qzBinaryGraphWriter, GraphsAfterResetsTakeNoMoreMemory) {
    if (const char* obstacle = AllocationCounter::obstacle()) GTEST_SKIP() << obstacle;
    const Cleanup cleanup;
    Everything& root = *Everything::make();
    root.part.weight = 1.5;
    const unsigned n = 300;
    Everything::made().reserve(2 * n + 1);
    MemoryStream* const stream = new MemoryStream(1 << 20);
    qzBinaryGraphWriter writer(stream);
    for (unsigned i = 0; i < n; ++i) {
        ASSERT_TRUE(writer.writeObject(&root, &root) && writer.writeObject(&root, &root));
        writer.reset();
    }
    Reading reading(stream->take());
    std::vector<unsigned> costs(n);
    for (unsigned& cost : costs) {
        const AllocationCounter counter;
        ASSERT_TRUE(reading.readObject(Everything::type) && reading.readObject(Everything::type));
        EXPECT_EQ(Everything::made().back()->sum(), root.sum());
        reading.reset();
        cost = counter.counts().allocations;
    }
    EXPECT_LE(costs[n - 1], costs[1] + 2); // which may lie in one chunk more
}

} // namespace
