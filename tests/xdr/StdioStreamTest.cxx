#include "xdr/StdioStream.h"

#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "support/MemoryStream.h"
#include "xdr/StreamModes.h"

namespace {

// A file of the test's own that goes with it.
struct TemporaryFile {
    explicit TemporaryFile(const char* content = "") {
        close(mkstemp(path));
        std::ofstream(path) << content;
    }
    ~TemporaryFile() { unlink(path); }
    char path[32] = "/tmp/StdioStreamTest-XXXXXX";
};

TEST(qzStdioStream, ValuesTravelAsTheirMemoryWithLongsOfFourBytes) {
    TemporaryFile file;
    short shorts[] = {1, -2};
    int i = 3;
    long longs[] = {-4, 0x7fffffff}, wide = LONG_MAX;
    float f = 0.5f;
    double d = 0.25;
    {
        qzStdioStream out(file.path, qzStream::qzST_Write);
        EXPECT_TRUE(out.isWriting() && !out.isReading());
        EXPECT_TRUE(out.putBytes("ab", 2) && out.putBytes("c", 1) && out.putShorts(shorts, 2));
        EXPECT_TRUE(out.putInts(&i, 1) && out.putLongs(longs, 2) && out.putFloats(&f, 1));
        EXPECT_TRUE(out.putDoubles(&d, 1));
        EXPECT_TRUE(sizeof(long) == 4 || !out.putLongs(&wide, 1));
    }
    EXPECT_EQ(fileContent(file.path),
              std::string("abc\1\0\xfe\xff\3\0\0\0\xfc\xff\xff\xff\xff\xff\xff\x7f", 19) +
                  std::string("\0\0\0\x3f\0\0\0\0\0\0\xd0\x3f", 12));

    qzStdioStream in(file.path, qzStream::qzST_Read);
    char bytes[4] = "";
    shorts[1] = i = 0;
    longs[0] = longs[1] = 0;
    f = 0;
    d = 0;
    EXPECT_TRUE(in.getBytes(nullptr, 0) && in.getBytes(bytes, 1) && in.getBytes(bytes + 1, 2));
    EXPECT_TRUE(in.getShorts(shorts, 2) && in.getInts(&i, 1) && in.getLongs(longs, 2));
    EXPECT_TRUE(in.getFloats(&f, 1) && in.getDoubles(&d, 1));
    EXPECT_STREQ(bytes, "abc");
    EXPECT_TRUE(shorts[1] == -2 && i == 3 && longs[0] == -4 && longs[1] == 0x7fffffff);
    EXPECT_TRUE(f == 0.5f && d == 0.25);
    EXPECT_FALSE(in.getBytes(bytes, 1) || in.getLongs(longs, 1));
}

TEST(qzStdioStream, OpeningForWritingKeepsWhatIsThere) {
    TemporaryFile file("old content");
    for (qzStream::qzStreamType type : {qzStream::qzST_Write, qzStream::qzST_ReadWrite}) {
        EXPECT_TRUE(qzStdioStream(file.path, type).putBytes("new", 3));
    }
    EXPECT_EQ(fileContent(file.path), "new content");
}

TEST(qzStdioStream, OnlyWritersCreateTheirFile) {
    TemporaryFile file;
    unlink(file.path);
    char c;
    qzStdioStream reader(file.path, qzStream::qzST_Read, 0600);
    EXPECT_TRUE(reader.hasError());
    EXPECT_FALSE(reader.getBytes(&c, 1) || reader.getBytes(&c, 0) || reader.putBytes("x", 1));
    EXPECT_NE(access(file.path, F_OK), 0);
    const mode_t mask = umask(0);
    EXPECT_FALSE(qzStdioStream(file.path, qzStream::qzST_ReadWrite, 0640).hasError());
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
    EXPECT_STREQ(bytes, "abc."); // what did arrive
    EXPECT_FALSE(in.atEOF() || in.hasError());
    const auto unknown = static_cast<qzStream::qzStreamType>(3);
    EXPECT_TRUE(qzStdioStream(static_cast<FILE*>(nullptr), qzStream::qzST_Read).hasError());
    EXPECT_TRUE(qzStdioStream(-1, qzStream::qzST_Read).hasError());
    EXPECT_TRUE(qzStdioStream(file.path, unknown).hasError());
    EXPECT_EQ(unixType(unknown), O_RDONLY);
}

TEST(qzStdioStream, FlushesAndClosesWhatItWasGiven) {
    TemporaryFile file("abc");
    const int fd = open(file.path, O_WRONLY);
    EXPECT_TRUE(qzStdioStream(fd, qzStream::qzST_Write).putBytes("flushed", 7));
    EXPECT_EQ(fcntl(fd, F_GETFD), -1);
    EXPECT_EQ(fileContent(file.path), "flushed");
}

} // namespace
