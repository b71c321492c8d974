// The binary object format, octet by octet.
#include "xdr/BinaryWriter.h"

#include <climits>

#include <gtest/gtest.h>

#include "support/BinaryRecords.h"
#include "support/Box.h"
#include "support/MemoryStream.h"
#include "xdr/BinaryGraphWriter.h"

namespace {

using testing::KilledBySignal;

qzTypeObj otherType("Other", 7, nullptr, nullptr, Box::xdr);

unsigned char none(Box&, qzTranscriber&) { return 1; }
unsigned char pointers(Box& b, qzTranscriber& t) {
    return pointTo(b.other, b, t) && pointTo(b.another, b, t) && t.xdr(b.words, 1);
}

template <class Writer> struct WrittenBy {
    explicit WrittenBy(std::size_t limit = 1 << 20)
        : stream(new MemoryStream(limit)), writer(stream) {}
    std::string root(Box& box) {
        EXPECT_TRUE(writer.writeObject(&box, &box));
        return stream->take();
    }
    MemoryStream* stream;
    Writer writer;
};
using Written = WrittenBy<qzBinaryWriter>;

// The first Box, whose type has id 2 and which has id 1 itself.
const std::string body = definition(2, "Box") + record(10, "", word(1) + word(2) + word(1));

TEST(qzBinaryWriter, TextMemberSplitsTheDataOfItsObject) {
    Box::members = [](Box& b, qzTranscriber& t) -> unsigned char {
        return t.xdr(&b.text) && t.xdr(b.words, 1);
    };
    const auto writtenText = [](const char* text) {
        Box box;
        box.text = const_cast<char*>(text);
        return Written().root(box);
    };
    EXPECT_EQ(writtenText("hi"), body + record(3, word(0), word(3) + word(3)) +
                                     record(5, std::string("hi\0", 3), word(3) + word(3)));
    EXPECT_EQ(writtenText(""), body + record(3, word(0), word(3) + word(1)) +
                                   record(5, std::string(1, 0), word(3) + word(1)));
    EXPECT_EQ(writtenText(nullptr), body + record(1, word(0)));
}

TEST(qzBinaryWriter, BodiesFollowDepthFirstWithIdsInTheOrderOfMeeting) {
    Box::members = pointers;
    Box leaf, other(otherType), root;
    root.other = other.other = &leaf;
    root.another = &other;
    other.another = &root;
    root.words[0] = 3;
    // Ids: root 1, Box 2, leaf 3, Other 4, other 5.
    EXPECT_EQ(Written().root(root),
              body + record(11, "", word(3)) + definition(4, "Other") +
                  record(11, word(3), word(5)) + record(10, "", word(5) + word(4) + word(7)) +
                  record(12, "", word(3)) + record(12, word(0), word(1)) +
                  record(10, "", word(3) + word(2) + word(7)) + record(1, "") + record(1, word(0)));
}

TEST(qzBinaryWriter, ObjectsCarryTheVersionLastDefined) {
    Box::members = none;
    Box first, second(otherType);
    Written standard;
    WrittenBy<qzBinaryGraphWriter> graphs; // each its own
    standard.root(first);
    graphs.root(first);
    standard.root(second);
    graphs.root(second);
    EXPECT_EQ(standard.root(first), record(10, "", word(5) + word(2) + word(7)));
    EXPECT_EQ(graphs.root(first), record(10, "", word(5) + word(2) + word(1)));
}

TEST(qzBinaryWriter, RecordsHold512BytesAndSayTheirLengthShortly) {
    Box box;
    for (unsigned n : {0, 1, 255, 256, 511, 512, 513, 1025}) {
        SCOPED_TRACE(n);
        std::string bytes(n, 'x'), fields = word(1) + word(2) + word(1);
        Box::members = [&](Box&, qzTranscriber& t) { return t.xdr(&bytes[0], n); };
        const std::string actual = Written().root(box);
        std::string expected = definition(2, "Box");
        for (unsigned kind = 10; kind == 10 || !bytes.empty(); kind = 0, fields.clear()) {
            expected += record(kind, bytes.substr(0, 512), fields);
            bytes.erase(0, 512);
        }
        EXPECT_EQ(actual, expected);
    }
}

TEST(qzBinaryWriter, SharedArraysAndPartsAreWrittenOnce) {
    int shared[] = {1, -1}, *first = shared, *second = shared;
    long longs[] = {5, 6}, *third = longs;
    double part = 0;
    Box::members = [&](Box& b, qzTranscriber& t) -> unsigned char {
        return t.xdr(&first, 2) && t.xdr(&second, 2) && t.xdr(b.words, 1) && t.xdr(&third, 2) &&
               t.xdr(weightType, &b, &b) && t.xdr(weightType, &b, &part) &&
               t.xdr(weightType, &b, &part);
    };
    Box box;
    EXPECT_EQ(Written().root(box),
              body + record(3, "", word(3) + word(8)) + record(4, "", word(3)) +
                  record(0, word(0)) + record(3, "", word(4) + word(8)) +
                  record(13, std::string(8, 0), word(5)) + record(14, "", word(5)) +
                  record(7, word(5) + word(6), word(4) + word(8)) +
                  record(7, word(1) + word(-1), word(3) + word(8)));
}

TEST(qzBinaryWriter, IdsKeepRisingAcrossResets) {
    Box::members = none;
    Box box;
    Written written;
    written.root(box);
    EXPECT_EQ(written.root(box), record(10, "", word(3) + word(2) + word(1)));
    written.writer.reset();
    EXPECT_EQ(written.root(box),
              definition(5, "Box") + record(10, "", word(4) + word(5) + word(1)));
}

TEST(qzBinaryWriter, RefusalsAreReportedAndNothingLeaks) {
    Box::members = pointers;
    Box leaf(otherType), root;
    root.other = root.another = &leaf;
    const std::size_t whole = Written().root(root).size();
    for (std::size_t limit = 1; limit < whole; ++limit)
        EXPECT_FALSE(Written(limit).writer.writeObject(&root, &root)) << limit;
    long value = LONG_MAX;
    Box::members = [&value](Box&, qzTranscriber& t) { return t.xdr(&value, 1); };
    EXPECT_EQ(Written().writer.writeObject(&root, &root), sizeof(long) == 4);
}

TEST(qzBinaryWriterDeathTest, CannotRead) {
    EXPECT_EXIT(Written().writer.readObject(otherType), KilledBySignal(SIGABRT),
                "^tried to invoke qzBinaryWriter::readObject\n$");
}

TEST(qzTranscriberFactory, WriterComesWithItsHeader) {
    const auto header = [](std::size_t limit) {
        MemoryStream stream(limit);
        stream.addRef();
        qzTranscriber* writer = qzTranscriber::getWriter(&stream);
        delete writer;
        return writer ? stream.take() : "no writer";
    };
    const std::string expected("qzBinaryWriter\0ieee\0\x22\x11\x66\x55\x44\x33", 26);
    EXPECT_EQ(header(1000), expected);
    EXPECT_EQ(header(25), "no writer");
    qzTranscriber::changeDefaultWriter([](qzStream*) -> qzTranscriber* { return nullptr; });
    qzTranscriber::changeDefaultWriter(nullptr); // ignored
    EXPECT_EQ(header(1000), "no writer");
    qzTranscriber::resetToDefaultWriter();
    EXPECT_EQ(header(1000), expected);
}

TEST(qzTranscriberFactory, ReaderIsTheOneRegisteredUnderTheName) {
    static std::string seen;
    qzTranscriber::addTranscriber(
        "FactoryTest", [](qzStream*, short s, long l, const char* format) -> qzTranscriber* {
            seen += std::to_string(s) + " " + std::to_string(l) + " " + format;
            return nullptr;
        });
    const auto read = [](const std::string& bytes) {
        MemoryStream stream(bytes);
        return qzTranscriber::getReader(&stream);
    };
    const std::string good = std::string("FactoryTest\0vax\0", 16) + half(5) + word(-6);
    for (std::size_t cut = 1; cut <= good.size(); ++cut)
        EXPECT_EQ(read(good.substr(0, cut)), nullptr);
    EXPECT_EQ(read(std::string(100000, 'x') + good), nullptr);
    EXPECT_EQ(seen, "5 -6 vax"); // of the whole header alone
    EXPECT_EXIT(read(std::string("nobody\0ieee\0", 12) + half(1) + word(1)),
                KilledBySignal(SIGABRT), "^Unknown transcriber type \"nobody\"\n$");
}

} // namespace
