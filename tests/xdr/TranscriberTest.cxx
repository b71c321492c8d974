#include "xdr/Transcriber.h"

#include <gtest/gtest.h>

#include "support/RecordingTranscriber.h"
#include "xdr/Stream.h"

namespace {

TEST(qzTranscriber, WritingIsTheNegationOfReading) {
    RecordingTranscriber writer;
    RecordingTranscriber reader((std::string()));
    EXPECT_TRUE(writer.isWriting());
    EXPECT_FALSE(writer.isReading());
    EXPECT_FALSE(reader.isWriting());
    EXPECT_TRUE(reader.isReading());
}

TEST(qzTranscriber, IntsTravelAsLongsInOneCall) {
    int few[] = {1, -2, 0x7fffffff};
    std::vector<unsigned> many(100, 0xfffffff0u); // more than the local copy holds
    RecordingTranscriber writer;
    ASSERT_TRUE(writer.xdr(few, 3));
    ASSERT_TRUE(writer.xdr(many.data(), 100));
    EXPECT_EQ(writer.log, (std::vector<std::string>{"long 3", "ulong 100"}));
    EXPECT_EQ(writer.bytes.substr(0, 12), word(1) + word(-2) + word(0x7fffffff));
    EXPECT_EQ(writer.bytes.size(), 412u);

    RecordingTranscriber reader(writer.bytes);
    int readFew[3] = {};
    std::vector<unsigned> readMany(100);
    ASSERT_TRUE(reader.xdr(readFew, 3));
    ASSERT_TRUE(reader.xdr(readMany.data(), 100));
    EXPECT_EQ(readFew[1], -2);
    EXPECT_EQ(readFew[2], 0x7fffffff);
    EXPECT_EQ(readMany, many);
    EXPECT_FALSE(reader.xdr(readFew, 1));
}

TEST(qzTranscriber, IntPointersTravelAsLongPointersWhereTheseAreTheSame) {
    int array[] = {5, 6};
    int* p = array;
    RecordingTranscriber writer;
    if (sizeof(int) == sizeof(long)) {
        ASSERT_TRUE(writer.xdr(&p, 2));
        EXPECT_EQ(writer.log, (std::vector<std::string>{"long* 2"}));
        EXPECT_EQ(writer.bytes, word(5) + word(6));
    } else {
        EXPECT_FALSE(writer.xdr(&p, 2)); // rather than half the array as longs
        EXPECT_TRUE(writer.bytes.empty());
    }
}

struct NullStream : qzStream {
    explicit NullStream(bool& gone) : gone(gone) {}
    ~NullStream() override { gone = true; }
    unsigned char hasError() override { return 0; }
    unsigned char atEOF() override { return 0; }
    unsigned char isReading() override { return 1; }
    unsigned char isWriting() override { return 1; }
    qzStreamType getType() override { return qzST_ReadWrite; }
    unsigned char getBytes(char*, unsigned) override { return 0; }
    unsigned char getShorts(short*, unsigned) override { return 0; }
    unsigned char getInts(int*, unsigned) override { return 0; }
    unsigned char getLongs(long*, unsigned) override { return 0; }
    unsigned char getFloats(float*, unsigned) override { return 0; }
    unsigned char getDoubles(double*, unsigned) override { return 0; }
    unsigned char putBytes(const char*, unsigned) override { return 0; }
    unsigned char putShorts(const short*, unsigned) override { return 0; }
    unsigned char putInts(const int*, unsigned) override { return 0; }
    unsigned char putLongs(const long*, unsigned) override { return 0; }
    unsigned char putFloats(const float*, unsigned) override { return 0; }
    unsigned char putDoubles(const double*, unsigned) override { return 0; }
    bool& gone;
};

TEST(qzTranscriber, HoldsOneReferenceOnItsStream) {
    bool firstGone = false;
    bool secondGone = false;
    {
        RecordingTranscriber t;
        qzStream* first = new NullStream(firstGone);
        t.setStream(first);
        t.setStream(first); // the same again must not let go of it
        EXPECT_EQ(first->references(), 1);
        EXPECT_FALSE(firstGone);
        qzStream* second = new NullStream(secondGone);
        second->addRef();
        t.setStream(second);
        EXPECT_TRUE(firstGone);
        second->delRef();
        EXPECT_FALSE(secondGone);
    }
    EXPECT_TRUE(secondGone);
}

} // namespace
