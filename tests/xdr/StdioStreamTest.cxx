#include "xdr/StdioStream.h"

#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "xdr/StreamModes.h"

namespace {

// A file of the test's own that goes with it.
struct TemporaryFile {
    explicit TemporaryFile(const std::string& content = "") {
        const int fd = mkstemp(path);
        EXPECT_EQ(write(fd, content.data(), content.size()), ssize_t(content.size()));
        close(fd);
    }
    ~TemporaryFile() { unlink(path); }
    std::string content() const {
        std::string all(100, 0);
        const int fd = open(path, O_RDONLY);
        all.resize(static_cast<std::size_t>(read(fd, &all[0], all.size())));
        close(fd);
        return all;
    }
    char path[32] = "/tmp/StdioStreamTest-XXXXXX";
};

TEST(qzStdioStream, ValuesTravelAsTheirMemoryWithLongsOfFourBytes) {
    TemporaryFile file;
    {
        qzStdioStream out(file.path, qzStream::qzST_Write);
        EXPECT_TRUE(out.isWriting());
        EXPECT_FALSE(out.isReading());
        const short shorts[] = {1, -2};
        const int i = 3;
        const long longs[] = {-4, 0x7fffffff};
        const float f = 0.5f;
        const double d = 0.25;
        EXPECT_TRUE(out.putBytes("ab", 2) && out.putBytes("c", 1) && out.putShorts(shorts, 2));
        EXPECT_TRUE(out.putInts(&i, 1) && out.putLongs(longs, 2) && out.putFloats(&f, 1));
        EXPECT_TRUE(out.putDoubles(&d, 1) && out.putInts(&i, 0));
        if (sizeof(long) > 4) {
            const long wide = static_cast<long>(1ull << 32);
            EXPECT_FALSE(out.putLongs(&wide, 1));
        }
    }
    EXPECT_EQ(file.content().substr(0, 19),
              std::string("abc\1\0\xfe\xff\3\0\0\0\xfc\xff\xff\xff\xff\xff\xff\x7f", 19));
    EXPECT_EQ(file.content().size(), 31u);

    qzStdioStream in(file.path, qzStream::qzST_Read);
    char bytes[3];
    short shorts[2];
    int i;
    long longs[2];
    float f;
    double d;
    EXPECT_TRUE(in.getBytes(bytes, 1) && in.getBytes(bytes + 1, 2) && in.getShorts(shorts, 2));
    EXPECT_TRUE(in.getInts(&i, 1) && in.getLongs(longs, 2) && in.getFloats(&f, 1));
    EXPECT_TRUE(in.getDoubles(&d, 1));
    EXPECT_EQ(std::string(bytes, 3), "abc");
    EXPECT_EQ(shorts[1], -2);
    EXPECT_EQ(i, 3);
    EXPECT_EQ(longs[0], -4);
    EXPECT_EQ(longs[1], 0x7fffffff);
    EXPECT_EQ(f, 0.5f);
    EXPECT_EQ(d, 0.25);
    EXPECT_FALSE(in.getBytes(bytes, 1));
    EXPECT_FALSE(in.getLongs(longs, 1));
}

TEST(qzStdioStream, OpeningForWritingKeepsWhatIsThere) {
    TemporaryFile file("old content");
    for (qzStream::qzStreamType type : {qzStream::qzST_Write, qzStream::qzST_ReadWrite}) {
        qzStdioStream out(file.path, type);
        EXPECT_EQ(out.getType(), type);
        EXPECT_TRUE(out.putBytes("new", 3));
    }
    EXPECT_EQ(file.content(), "new content");
}

TEST(qzStdioStream, OnlyWritersCreateTheirFile) {
    TemporaryFile file;
    unlink(file.path);
    const mode_t mask = umask(0);
    {
        qzStdioStream reader(file.path, qzStream::qzST_Read, 0600);
        EXPECT_TRUE(reader.hasError());
        char c;
        EXPECT_FALSE(reader.getBytes(&c, 1));
        EXPECT_FALSE(reader.getBytes(&c, 0));
        EXPECT_FALSE(reader.putBytes("x", 1));
        EXPECT_NE(access(file.path, F_OK), 0);
        qzStdioStream writer(file.path, qzStream::qzST_ReadWrite, 0640);
        EXPECT_FALSE(writer.hasError());
    }
    umask(mask);
    struct stat status;
    ASSERT_EQ(stat(file.path, &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
}

TEST(qzStdioStream, FlagsTellOfOpeningOnly) {
    TemporaryFile file("abc");
    qzStdioStream in(file.path, qzStream::qzST_Read);
    char bytes[5] = "....";
    EXPECT_FALSE(in.getBytes(bytes, 4));
    EXPECT_EQ(std::string(bytes), "abc."); // what did arrive
    EXPECT_FALSE(in.atEOF());
    EXPECT_FALSE(in.hasError());
    EXPECT_TRUE(qzStdioStream(static_cast<FILE*>(nullptr), qzStream::qzST_Read).hasError());
    EXPECT_TRUE(qzStdioStream(-1, qzStream::qzST_Read).hasError());
}

TEST(qzStdioStream, ClosesWhatItWasGiven) {
    TemporaryFile file("abc");
    const int fd = open(file.path, O_RDONLY);
    { qzStdioStream in(fd, qzStream::qzST_Read); }
    EXPECT_EQ(fcntl(fd, F_GETFD), -1);
    FILE* opened = std::fopen(file.path, "w");
    const int under = fileno(opened);
    {
        qzStdioStream out(opened, qzStream::qzST_Write);
        EXPECT_TRUE(out.putBytes("flushed", 7));
    }
    EXPECT_EQ(fcntl(under, F_GETFD), -1);
    EXPECT_EQ(file.content(), "flushed");
}

TEST(qzStdioStream, UnknownTypesHaveNoMode) {
    const auto unknown = static_cast<qzStream::qzStreamType>(3);
    EXPECT_EQ(stdioType(unknown), nullptr);
    EXPECT_EQ(unixType(unknown), O_RDONLY);
}

} // namespace
