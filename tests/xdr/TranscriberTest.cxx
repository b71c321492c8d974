#include "xdr/Transcriber.h"

#include <gtest/gtest.h>

#include "support/MemoryStream.h"
#include "support/RecordingTranscriber.h"

namespace {

TEST(qzTranscriber, IntsTravelAsLongsInOneCall) {
    int few[] = {1, -2, 0x7fffffff};
    std::vector<unsigned> many(100, 0xfffffff0u); // more than the local copy holds
    RecordingTranscriber writer;
    EXPECT_TRUE(writer.isWriting() && !writer.isReading());
    ASSERT_TRUE(writer.xdr(few, 3) && writer.xdr(many.data(), 100));
    EXPECT_EQ(writer.log, (std::vector<std::string>{"long 3", "ulong 100"}));
    EXPECT_EQ(writer.bytes.substr(0, 12), word(1) + word(-2) + word(0x7fffffff));

    RecordingTranscriber reader(writer.bytes);
    EXPECT_TRUE(reader.isReading() && !reader.isWriting());
    int readFew[3] = {};
    std::vector<unsigned> readMany(100);
    ASSERT_TRUE(reader.xdr(readFew, 3) && reader.xdr(readMany.data(), 100));
    EXPECT_EQ(readFew[1], -2);
    EXPECT_EQ(readMany, many);
    EXPECT_FALSE(reader.xdr(readFew, 1));
}

TEST(qzTranscriber, IntPointersTravelAsLongPointersWhereTheseAreTheSame) {
    int array[] = {5, 6}, *p = array;
    RecordingTranscriber writer;
    EXPECT_EQ(writer.qzTranscriber::xdr(&p, 2), sizeof(int) == sizeof(long));
}

TEST(qzTranscriber, HoldsOneReferenceOnItsStream) {
    qzStream* const stream = new MemoryStream(1);
    RecordingTranscriber t;
    t.setStream(stream);
    t.setStream(stream);
    EXPECT_EQ(stream->references(), 1);
    t.setStream(new MemoryStream(1)); // the first goes, and this one with its transcriber
}

} // namespace
