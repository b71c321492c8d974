// The binary object format, octet by octet.
#include "xdr/BinaryWriter.h"

#include <climits>
#include <functional>

#include <gtest/gtest.h>

#include "support/BinaryRecords.h"
#include "support/MemoryStream.h"

namespace {

using testing::KilledBySignal;

// An object whose members are what its function transcribes.
struct Node : qzXDRObj {
    using Members = std::function<unsigned char(Node&, qzTranscriber&)>;
    Node(qzTypeObj& type, Members members) : type(type), members(std::move(members)) {}
    const char* className() const override { return type.name; }
    unsigned char xdr(qzTranscriber& t) override { return members(*this, t); }
    qzTypeObj& getTypeObj() const override { return type; }
    static unsigned char xdr(void* object, qzTranscriber& t) {
        return static_cast<Node*>(object)->xdr(t);
    }

    qzTypeObj& type;
    Members members;
    unsigned number = 0;
    Node* left = nullptr;
    Node* right = nullptr;
};

qzTypeObj nodeType("Node", 1, nullptr, nullptr, Node::xdr);
qzTypeObj otherType("Other", 7, nullptr, nullptr, Node::xdr);

unsigned char none(Node&, qzTranscriber&) { return 1; }
unsigned char pointers(Node& node, qzTranscriber& t) {
    return t.xdr(&node.left, node.left, nodeType, &node, nullptr) &&
           t.xdr(&node.right, node.right, nodeType, &node, nullptr) && t.xdr(&node.number, 1);
}

struct Written {
    explicit Written(std::size_t limit = 1 << 20)
        : stream(new MemoryStream(limit)), writer(stream) {}
    std::string root(Node& node) {
        EXPECT_TRUE(writer.writeObject(&node, &node));
        return stream->take();
    }
    MemoryStream* stream;
    qzBinaryWriter writer;
};

TEST(qzBinaryWriter, TextMemberSplitsTheDataOfItsObject) {
    const std::string body = definition(2, "Node") + record(10, "<", word(1) + word(2) + word(1));
    const auto writtenText = [](char* text) {
        Node node(nodeType, [&text](Node&, qzTranscriber& t) -> unsigned char {
            char before = '<', behind = '>';
            return t.xdr(&before, 1) && t.xdr(&text) && t.xdr(&behind, 1);
        });
        return Written().root(node);
    };
    char text[] = "hi", empty[] = "";
    EXPECT_EQ(writtenText(text), body + record(3, ">", word(3) + word(3)) +
                                     record(5, std::string("hi\0", 3), word(3) + word(3)));
    EXPECT_EQ(writtenText(empty), body + record(3, ">", word(3) + word(1)) +
                                      record(5, std::string(1, 0), word(3) + word(1)));
    EXPECT_EQ(writtenText(nullptr), body + record(1, ">"));
}

TEST(qzBinaryWriter, BodiesFollowDepthFirstWithIdsInTheOrderOfMeeting) {
    Node leaf(nodeType, pointers), other(otherType, pointers), root(nodeType, pointers);
    root.left = other.left = &leaf;
    root.right = &other;
    other.right = &root;
    root.number = 3;
    // Ids: root 1, Node 2, leaf 3, Other 4, other 5.
    EXPECT_EQ(Written().root(root),
              definition(2, "Node") + record(10, "", word(1) + word(2) + word(1)) +
                  record(11, "", word(3)) + definition(4, "Other") + record(11, word(3), word(5)) +
                  record(10, "", word(5) + word(4) + word(7)) + record(12, "", word(3)) +
                  record(12, word(0), word(1)) + record(10, "", word(3) + word(2) + word(7)) +
                  record(1, "") + record(1, word(0)));
}

TEST(qzBinaryWriter, ObjectsCarryTheVersionLastDefined) {
    Node first(nodeType, none), second(otherType, none);
    Written written;
    written.root(first);
    written.root(second);
    EXPECT_EQ(written.root(first), record(10, "", word(5) + word(2) + word(7)));
}

TEST(qzBinaryWriter, RecordsHold512BytesAndSayTheirLengthShortly) {
    for (unsigned n : {0, 1, 255, 256, 511, 512, 513, 1025}) {
        SCOPED_TRACE(n);
        std::string bytes(n, 'x'), fields = word(1) + word(2) + word(1);
        Node node(nodeType, [&](Node&, qzTranscriber& t) { return t.xdr(&bytes[0], n); });
        const std::string actual = Written().root(node);
        std::string expected = definition(2, "Node");
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
    Node part(otherType, [](Node& n, qzTranscriber& t) { return t.xdr(&n.number, 1); });
    Node node(nodeType, [&](Node& n, qzTranscriber& t) -> unsigned char {
        return t.xdr(&first, 2) && t.xdr(&second, 2) && t.xdr(&n.number, 1) && t.xdr(&third, 2) &&
               t.xdr(otherType, &n, &n) && t.xdr(otherType, &n, &part) &&
               t.xdr(otherType, &n, &part);
    });
    EXPECT_EQ(Written().root(node),
              definition(2, "Node") + record(10, "", word(1) + word(2) + word(1)) +
                  record(3, "", word(3) + word(8)) + record(4, "", word(3)) + record(0, word(0)) +
                  record(3, "", word(4) + word(8)) + record(13, word(0), word(5)) +
                  record(14, "", word(5)) + record(7, word(5) + word(6), word(4) + word(8)) +
                  record(7, word(1) + word(-1), word(3) + word(8)));
}

TEST(qzBinaryWriter, IdsKeepRisingAcrossResets) {
    Node node(nodeType, none);
    Written written;
    written.root(node);
    EXPECT_EQ(written.root(node), record(10, "", word(3) + word(2) + word(1)));
    written.writer.reset();
    EXPECT_EQ(written.root(node),
              definition(5, "Node") + record(10, "", word(4) + word(5) + word(1)));
}

TEST(qzBinaryWriter, RefusalsAreReportedAndNothingLeaks) {
    Node leaf(otherType, pointers), root(nodeType, pointers);
    root.left = root.right = &leaf;
    const std::size_t whole = Written().root(root).size();
    for (std::size_t limit = 1; limit < whole; ++limit) {
        EXPECT_FALSE(Written(limit).writer.writeObject(&root, &root)) << limit;
    }
    long value = LONG_MAX;
    Node wide(nodeType, [&value](Node&, qzTranscriber& t) { return t.xdr(&value, 1); });
    EXPECT_EQ(Written().writer.writeObject(&wide, &wide), sizeof(long) == 4);
}

TEST(qzBinaryWriter, LargeGraphsKeepTheirIdentities) { // in a table that grows with them
    const unsigned n = 20000;
    std::vector<Node> nodes(n, Node(nodeType, pointers));
    for (unsigned i = 0; i + 1 < n; ++i)
        nodes[i].left = nodes[i].right = &nodes[i + 1];
    // Each node: its body, two pointers to the next, its number.
    EXPECT_EQ(Written().root(nodes[0]).size(), 10 + (n - 1) * (13 + 5 + 5 + 5u) + 13 + 1 + 1 + 5);
}

TEST(qzBinaryWriterDeathTest, CannotRead) {
    EXPECT_EXIT(Written().writer.readObject(nodeType), KilledBySignal(SIGABRT),
                "^tried to invoke qzBinaryWriter::readObject\n$");
}

// The factory

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
    const std::string good = std::string("FactoryTest\0vax\0", 16) + half(5) + word(-6);
    for (std::size_t cut = 1; cut <= good.size(); ++cut) {
        MemoryStream part(good.substr(0, cut));
        EXPECT_EQ(qzTranscriber::getReader(&part), nullptr);
    }
    MemoryStream endless(std::string(100000, 'x') + good);
    EXPECT_EQ(qzTranscriber::getReader(&endless), nullptr);
    EXPECT_EQ(seen, "5 -6 vax"); // of the whole header alone
    MemoryStream unknown(std::string("nobody\0ieee\0", 12) + half(1) + word(1));
    EXPECT_EXIT(qzTranscriber::getReader(&unknown), KilledBySignal(SIGABRT),
                "^Unknown transcriber type \"nobody\"\n$");
}

} // namespace
