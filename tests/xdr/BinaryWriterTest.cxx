// The binary object format, octet by octet.
#include "xdr/BinaryWriter.h"

#include <climits>

#include <gtest/gtest.h>

#include "support/MemoryStream.h"
#include "support/RecordingTranscriber.h"

namespace {

using testing::KilledBySignal;

// A record: the tag's kind with the length of the data, fields, name, data.
std::string record(unsigned kind, const std::string& data, const std::string& fields = "") {
    const unsigned n = static_cast<unsigned>(data.size());
    std::string head;
    if (n == 0)
        head = std::string(1, char(kind));
    else if (n < 256)
        head = std::string(1, char(kind | 0x40)) + char(n);
    else
        head = std::string(1, char(kind | 0x80)) + half(static_cast<unsigned short>(n));
    return head + fields + data;
}
std::string definition(unsigned id, const char* name) {
    return record(2, "", word(id)) + std::string(name, std::strlen(name) + 1);
}

// An object whose members are what its function transcribes.
struct Node : qzXDRObj {
    using Members = unsigned char (*)(Node&, qzTranscriber&);
    Node(qzTypeObj& type, Members members) : type(type), members(members) {}
    const char* className() const override { return type.name; }
    unsigned char xdr(qzTranscriber& t) override { return members(*this, t); }
    qzTypeObj& getTypeObj() const override { return type; }
    static unsigned char xdr(void* object, qzTranscriber& t) {
        return static_cast<Node*>(object)->xdr(t);
    }

    qzTypeObj& type;
    Members members;
    char* text = nullptr;
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
    Written() : stream(new MemoryStream), writer(stream) {}
    std::string root(Node& node) {
        stream->bytes.clear();
        EXPECT_TRUE(writer.writeObject(&node, &node));
        return stream->bytes;
    }
    MemoryStream* stream;
    qzBinaryWriter writer;
};

TEST(qzBinaryWriter, TextMemberSplitsTheDataOfItsObject) {
    char text[] = "hi";
    Node node(nodeType, [](Node& n, qzTranscriber& t) -> unsigned char {
        return t.xdr(&n.number, 1) && t.xdr(&n.text) && t.xdr(&n.number, 1);
    });
    node.number = 0x01020304;
    node.text = text;
    EXPECT_EQ(Written().root(node), definition(2, "Node") +
                                        record(10, word(node.number), word(1) + word(2) + word(1)) +
                                        record(3, word(node.number), word(3) + word(3)) +
                                        record(5, std::string("hi\0", 3), word(3) + word(3)));
    node.text = nullptr;
    EXPECT_EQ(Written().root(node), definition(2, "Node") +
                                        record(10, word(node.number), word(1) + word(2) + word(1)) +
                                        record(1, word(node.number)));
    char empty[] = "";
    node.text = empty; // one carried zero
    EXPECT_EQ(Written().root(node).substr(28), record(3, word(node.number), word(3) + word(1)) +
                                                   record(5, std::string(1, 0), word(3) + word(1)));
}

TEST(qzBinaryWriter, BodiesFollowDepthFirstWithIdsInTheOrderOfMeeting) {
    Node leaf(nodeType, pointers);
    Node other(otherType, pointers);
    Node root(nodeType, pointers);
    root.left = &leaf;
    root.right = &other;
    other.left = &leaf;
    other.right = &root;
    leaf.number = 1;
    other.number = 2;
    root.number = 3;
    // Ids: root 1, Node 2, leaf 3, Other 4, other 5.
    EXPECT_EQ(Written().root(root),
              definition(2, "Node") + record(10, "", word(1) + word(2) + word(1)) +
                  record(11, "", word(3)) + definition(4, "Other") + record(11, word(3), word(5)) +
                  record(10, "", word(5) + word(4) + word(7)) + record(12, "", word(3)) +
                  record(12, word(2), word(1)) + record(10, "", word(3) + word(2) + word(7)) +
                  record(1, "") + record(1, word(1)));
}

TEST(qzBinaryWriter, ObjectsCarryTheVersionLastDefined) {
    Node second(otherType, none);
    Node root(nodeType, pointers);
    root.left = &second;
    Written written;
    const std::string bytes = written.root(root);
    EXPECT_NE(bytes.find(record(10, "", word(4) + word(3) + word(7))), std::string::npos);
    // The next one of the first type says 7, too.
    Node third(nodeType, none);
    EXPECT_EQ(written.root(third), record(10, "", word(5) + word(2) + word(7)));
}

TEST(qzBinaryWriter, RecordsHold512BytesAndSayTheirLengthShortly) {
    static unsigned size;
    static char bytes[1100];
    std::memset(bytes, 'x', sizeof bytes);
    Node node(nodeType, [](Node&, qzTranscriber& t) { return t.xdr(bytes, size); });
    for (unsigned n : {0, 1, 255, 256, 511, 512, 513, 1024, 1025}) {
        SCOPED_TRACE(n);
        size = n;
        std::string expected = definition(2, "Node");
        std::string rest(n, 'x');
        std::string fields = word(1) + word(2) + word(1);
        for (unsigned kind = 10; kind == 10 || !rest.empty(); kind = 0) {
            expected += record(kind, rest.substr(0, 512), fields);
            fields.clear();
            rest.erase(0, 512);
        }
        EXPECT_EQ(Written().root(node), expected);
    }
}

TEST(qzBinaryWriter, SharedArraysAndPartsAreWrittenOnce) {
    static int shared[] = {1, -1};
    static long longs[] = {5, 6};
    static int* first;
    static int* second;
    static long* third;
    first = second = shared;
    third = longs;
    Node node(nodeType, [](Node& n, qzTranscriber& t) -> unsigned char {
        return t.xdr(&first, 2) && t.xdr(&second, 2) && t.xdr(&n.number, 1) && t.xdr(&third, 2) &&
               t.xdr(otherType, &n, &n) && t.xdr(otherType, &n, n.left) &&
               t.xdr(otherType, &n, n.left);
    });
    Node part(otherType, [](Node&, qzTranscriber& t) {
        char c = 'p';
        return t.xdr(&c, 1);
    });
    node.left = &part;
    EXPECT_EQ(Written().root(node),
              definition(2, "Node") + record(10, "", word(1) + word(2) + word(1)) +
                  record(3, "", word(3) + word(8)) + record(4, "", word(3)) + record(0, word(0)) +
                  record(3, "", word(4) + word(8)) + record(13, "p", word(5)) +
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
    char text[] = "text";
    Node leaf(otherType, pointers);
    Node root(nodeType, pointers);
    root.left = root.right = &leaf;
    root.text = text;
    const std::size_t whole = Written().root(root).size();
    for (std::size_t limit = 0; limit < whole; ++limit) {
        Written written;
        written.stream->limit = limit;
        EXPECT_FALSE(written.writer.writeObject(&root, &root));
    }
    if (sizeof(long) > 4) {
        Node wide(nodeType, [](Node&, qzTranscriber& t) {
            long value = LONG_MAX;
            return t.xdr(&value, 1);
        });
        EXPECT_FALSE(Written().writer.writeObject(&wide, &wide));
    }
}

TEST(qzBinaryWriter, LargeGraphsKeepTheirIdentities) {
    const unsigned n = 20000;
    std::vector<Node> nodes(n, Node(nodeType, pointers));
    for (unsigned i = 0; i + 1 < n; ++i)
        nodes[i].left = nodes[i].right = &nodes[i + 1];
    const std::string bytes = Written().root(nodes[0]);
    // Each node: its body, two pointers to the next, its number.
    EXPECT_EQ(bytes.size(), 10 + (n - 1) * (13 + 5 + 5 + 5u) + 13 + 1 + 1 + 5);
}

TEST(qzBinaryWriterDeathTest, CannotRead) {
    EXPECT_EXIT(Written().writer.readObject(nodeType), KilledBySignal(SIGABRT),
                "^tried to invoke qzBinaryWriter::readObject\n$");
}

// The factory

const std::string header =
    std::string("qzBinaryWriter\0ieee\0", 20) + half(0x1122) + word(0x33445566);

TEST(qzTranscriberFactory, WriterComesWithItsHeader) {
    auto* stream = new MemoryStream;
    stream->addRef();
    delete qzTranscriber::getWriter(stream);
    EXPECT_EQ(stream->bytes, header);
    stream->bytes.clear();
    stream->limit = header.size() - 1;
    EXPECT_EQ(qzTranscriber::getWriter(stream), nullptr);

    stream->bytes.clear();
    qzTranscriber::changeDefaultWriter([](qzStream*) -> qzTranscriber* { return nullptr; });
    qzTranscriber::changeDefaultWriter(nullptr); // ignored
    EXPECT_EQ(qzTranscriber::getWriter(stream), nullptr);
    EXPECT_TRUE(stream->bytes.empty());
    qzTranscriber::resetToDefaultWriter();
    stream->limit = header.size();
    delete qzTranscriber::getWriter(stream);
    EXPECT_EQ(stream->bytes, header);
    stream->delRef();
}

TEST(qzTranscriberFactory, ReaderIsTheOneRegisteredUnderTheName) {
    static std::string seen;
    qzTranscriber::addTranscriber(
        "FactoryTest", [](qzStream*, short s, long l, const char* format) -> qzTranscriber* {
            seen = std::to_string(s) + " " + std::to_string(l) + " " + format;
            return nullptr;
        });
    const std::string good = std::string("FactoryTest\0vax\0", 16) + half(5) + word(-6);
    MemoryStream stream(good);
    EXPECT_EQ(qzTranscriber::getReader(&stream), nullptr);
    EXPECT_EQ(seen, "5 -6 vax");
    seen.clear();
    for (std::size_t cut = 0; cut < good.size(); ++cut) {
        MemoryStream part(good.substr(0, cut));
        EXPECT_EQ(qzTranscriber::getReader(&part), nullptr);
    }
    MemoryStream endless(std::string(100000, 'x') + good);
    EXPECT_EQ(qzTranscriber::getReader(&endless), nullptr);
    EXPECT_TRUE(seen.empty());
}

TEST(qzTranscriberFactoryDeathTest, UnknownNamesAreFatal) {
    qzTranscriber::addTranscriber("FactoryTest", nullptr);
    MemoryStream stream(std::string("nobody\0ieee\0", 12) + half(1) + word(1));
    EXPECT_EXIT(qzTranscriber::getReader(&stream), KilledBySignal(SIGABRT),
                "^Unknown transcriber type \"nobody\"\n$");
}

} // namespace
