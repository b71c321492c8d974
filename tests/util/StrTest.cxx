#include "util/Str.h"

#include <climits>
#include <csignal>
#include <cstdio>
#include <functional>
#include <iterator>
#include <random>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "tests/support/AllocationCounter.h"

namespace {

// The whole text, NULs included; every string must be terminated.
std::string text(const qzStr& s) {
    EXPECT_EQ(s.data[s.length()], '\0');
    return std::string(s.data, s.length());
}

bool isSharedEmpty(const qzStr& s) { return s.slength == 1 && s.data == &qzStr::emptyString; }

// Construction and the empty string

TEST(qzStr, EmptyStringsShareOneByteAndAllocateNothing) {
    const AllocationCounter counter;
    const qzStr none, zeroLength(0u), fromNull(static_cast<const char*>(nullptr)), literal("");
    const qzStr noBytes("abc", 0), copied(none), joined(none | literal | ""), sliced(none.head(0));
    qzStr changed;
    changed.setMaxLength(100);
    changed.resize(0);
    changed.append("");
    changed.append(none);
    changed.insert("", 0);
    changed.remove(0, 0);
    changed.lower();
    changed.raise();
    changed = none;
    changed = "";
    changed = none | none;
    const qzStr moved(std::move(changed)), cut = changed.cut(0, 0), trimmed = changed.trim(" ");
    const AllocationCounts cost = counter.counts();
    const qzStr* const all[] = {&none,   &zeroLength, &fromNull, &literal, &noBytes, &copied,
                                &joined, &sliced,     &moved,    &cut,     &trimmed};
    for (const auto& s : all)
        EXPECT_TRUE(isSharedEmpty(*s)) << &s - all;
    if (const char* reason = AllocationCounter::obstacle()) GTEST_SKIP() << reason;
    EXPECT_EQ(cost.allocations, 0u);
    EXPECT_EQ(cost.releases, 0u);
}

TEST(qzStr, ConstructorsTakeLengthsNotTerminators) {
    using namespace std::string_literals;
    EXPECT_EQ(text(qzStr(3u)), "\0\0\0"s);
    EXPECT_EQ(text(qzStr("a\0b")), "a");
    const char unterminated[] = {'x', '\0', 'y'};
    const qzStr original(unterminated, 3);
    const qzStr copy(original);
    EXPECT_EQ(text(original), "x\0y"s);
    EXPECT_EQ(text(copy), "x\0y"s);
    EXPECT_NE(copy.data, original.data);
    EXPECT_EQ(text(original.head(2) | "c\0d" | original.tail(2)), "x\0c\0y"s);
}

TEST(qzStr, NumberConstructorsOwnABufferEvenWhenEmpty) {
    for (const qzStr& empty : {qzStr(7, ""), qzStr(7.0f, ""), qzStr(7.0, "")}) {
        EXPECT_EQ(empty.slength, 1u);
        EXPECT_NE(empty.data, &qzStr::emptyString);
        EXPECT_EQ(text(empty), "");
        EXPECT_EQ(empty, qzStr());
        EXPECT_EQ(empty.hash(), 0u);
    }
    const qzStr empty(7, "");
    EXPECT_TRUE(isSharedEmpty(qzStr(empty)));
}

// Each way out of the owned empty buffer: the text must be right and the buffer
// released, which the leak check of the sanitizer build sees, too.
TEST(qzStr, OwnedEmptyBuffersAreNeitherLeakedNorLost) {
    struct {
        void (*change)(qzStr&);
        const char* result;
    } rows[] = {
        {[](qzStr& s) { s.append("abc"); }, "abc"},
        {[](qzStr& s) { s.append('c'); }, "c"},
        {[](qzStr& s) { s.append(s.data); }, ""},
        {[](qzStr& s) { s.append(s.data, 1), s = s.c_str(); }, ""}, // its own terminator
        {[](qzStr& s) { s.insert("abc", 0); }, "abc"},
        {[](qzStr& s) { s = "abc"; }, "abc"},
        {[](qzStr& s) { s = qzStr("abc"); }, "abc"},
        {[](qzStr& s) { s = s.data; }, ""},
        {[](qzStr& s) { s.remove(0, 0); }, ""},
        {[](qzStr& s) { s.resize(0), s.setMaxLength(9); }, ""},
        {[](qzStr& s) { s.format("%s%d", s.data, 5); }, "5"},
        {[](qzStr& s) { s.format("%600s", ""), s.remove(0, 599); }, " "},
        {[](qzStr& s) { qzStr taken(std::move(s)); }, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        bool right;
        const AllocationCounter counter;
        {
            qzStr s(7, "");
            row.change(s);
            right = s == row.result;
        }
        const AllocationCounts cost = counter.counts();
        EXPECT_TRUE(right);
        EXPECT_EQ(cost.allocations, cost.releases);
    }
}

TEST(qzStr, NumbersUseTheirFormatHoweverLongTheResult) {
    char huge[400];
    std::snprintf(huge, sizeof huge, "%f", 1e300);
    const std::string prefix(2000, 'x');
    const struct {
        qzStr number;
        std::string result;
    } rows[] = {
        {qzStr(0), "0"},
        {qzStr(INT_MIN), "-2147483648"},
        {qzStr(255, "<%04x>"), "<00ff>"},
        {qzStr(0.1f), "0.1"},
        {qzStr(-2.5f, "%.3f"), "-2.500"},
        {qzStr(0.1 + 0.2), "0.3"},
        {qzStr(0.1 + 0.2, "%.17g"), "0.30000000000000004"},
        {qzStr(1e300, "%f"), huge},
        {qzStr(7, (prefix + "%d").c_str()), prefix + "7"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(text(row.number), row.result);
}

// Changes

TEST(qzStr, ResizeIgnoresFillAndZeroes) {
    using namespace std::string_literals;
    qzStr s("ab");
    s.resize(5, 'x');
    EXPECT_EQ(text(s), "ab\0\0\0"s);
    qzStr fromEmpty;
    fromEmpty.resize(3, 'x');
    EXPECT_EQ(text(fromEmpty), "\0\0\0"s);

    s = "abcdef";
    s.resize(2);
    s.resize(5, 'x'); // what the shrink cut off does not come back
    EXPECT_EQ(text(s), "ab\0\0\0"s);
}

TEST(qzStr, NoTextLeftReturnsToTheSharedByte) {
    void (*const changes[])(qzStr&) = {
        [](qzStr& s) { s.remove(0, 3); },
        [](qzStr& s) { s.cut(0, 1), s.cut(1, 1), s.cut(0, 1); },
        [](qzStr& s) { s.resize(0); },
        [](qzStr& s) { s = ""; },
        [](qzStr& s) { s = s.data + 3; },
        [](qzStr& s) { s = static_cast<const qzStr&>(qzStr()); },
        [](qzStr& s) { s = qzStr() | ""; },
        [](qzStr& s) { s = s.trim("abc"); },
    };
    for (const auto& change : changes) {
        SCOPED_TRACE(&change - changes);
        qzStr s("abc");
        change(s);
        EXPECT_TRUE(isSharedEmpty(s));
    }
}

TEST(qzStr, TextArgumentsMayPointIntoTheString) {
    const struct {
        void (*change)(qzStr&);
        const char* result;
    } rows[] = {
        {[](qzStr& s) { s.append(s.data); }, "abcdefabcdef"},
        {[](qzStr& s) { s.append(s); }, "abcdefabcdef"},
        {[](qzStr& s) { s.append(s[1]); }, "abcdefb"},
        {[](qzStr& s) { s = s.data + 1; }, "bcdef"},
        {[](qzStr& s) { s = static_cast<qzStr&>(s); }, "abcdef"},
        {[](qzStr& s) { s = s | s | s; }, "abcdefabcdefabcdef"},
        {[](qzStr& s) { s.insert(s.data, 1); }, "aabcdefbcdef"},
        {[](qzStr& s) { s.replace(s.data + 3, 0); }, "defdef"},
        {[](qzStr& s) { s.format("%s-%s", s.data + 4, s.data); }, "ef-abcdef"},
        {[](qzStr& s) { s.format("%600s%s", s.data, s.data + 4), s.remove(1, 593); }, " abcdefef"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        qzStr s("abcdef");
        row.change(s);
        EXPECT_EQ(text(s), row.result);
    }
}

TEST(qzStr, ChangesAgreeWithStdString) {
    using namespace std::string_literals;
    const std::string alphabet = "abYZ@[`{\0\xe9"s;
    std::mt19937 random(1);
    const auto below = [&](std::size_t n) { return static_cast<unsigned>(random() % n); };

    // What the operations work on and with; drawn anew for each.
    qzStr s;
    std::string model, word, slice; // slice: n bytes of the text, at from
    unsigned size = 0, at = 0, from = 0, n = 0;
    const auto letterCase = [&](char first, char last) {
        for (char& c : model) {
            if (c >= first && c <= last) c ^= 0x20;
        }
    };
    const std::function<void()> operations[] = {
        // Those before the reserve never lengthen the text.
        [&] { s.remove(from, n), model.erase(from, n); },
        [&] { s.append(s.cut(from, n)), model.erase(from, n), model += slice; },
        [&] { s = s.extract(from, n), model = slice; },
        [&] { s = s.head(at), s = s.tail(at / 2), model = model.substr(at - at / 2, at / 2); },
        [&] { s = s.data + from, model = model.c_str() + from; },
        [&] { s.resize(at), model.resize(at); },
        [&] { s.replace(n ? s.data : "", from, n), model.replace(from, n, model.substr(0, n)); },
        [&] { s.lower(), letterCase('A', 'Z'); },
        [&] { s.raise(), letterCase('a', 'z'); },
        [&] { s.setMaxLength(at + size); },
        [&] { s = word.c_str(), model = word.c_str(); },
        [&] { s = qzStr(word.data(), size), model = word; },
        [&] { s.resize(at + size), model.resize(at + size); },
        [&] { s.append(word.data(), size), model += word; },
        [&] { s.append(word[0]), model += word[0]; },
        [&] { s.append(s.extract(from, n)), model += slice; },
        [&] { s.append(n ? s.data + from : "", n), model += slice; },
        [&] { s.insert(word.data(), at, size), model.insert(at, word); },
        [&] { s.insert(word[0], at), model.insert(at, 1, word[0]); },
        [&] { s.insert(n ? s.data + from : "", at, n), model.insert(at, slice); },
        [&] { s = s | word.c_str() | qzStr(word.data(), size), model += word.c_str() + word; },
    };
    const unsigned shortening = 9;
    for (int step = 0; step < 20000; ++step) {
        word.clear();
        for (size = 0; size == 0 || below(12); ++size)
            word += alphabet[below(alphabet.size())];
        at = below(model.size() + 1);
        from = below(model.size() + 1);
        n = below(model.size() - from + 1);
        slice = model.substr(from, n);
        const unsigned operation = below(model.size() > 400 ? shortening : std::size(operations));
        SCOPED_TRACE(testing::Message() << "step " << step << ", operation " << operation);
        operations[operation]();
        ASSERT_EQ(text(s), model);
    }
}

// Formatting, comparison, hash

TEST(qzStr, FormatRendersAnyLengthAndStopsAtNul) {
    qzStr s("some text to be replaced");
    for (int width : {1, 60, 511, 512, 5000, 60}) {
        SCOPED_TRACE(width);
        s.format("%*d%%", width, 7);
        EXPECT_EQ(text(s), std::string(width - 1, ' ') + "7%");
        s.format("%*s%cafter", width, "", 0);
        EXPECT_EQ(text(s), std::string(width, ' '));
        s.append('.');
        EXPECT_EQ(text(s), std::string(width, ' ') + '.');
    }
    int written = 0;
    s.format("%c%5.2f%n%lld", 'x', 3.14159, &written, LLONG_MIN);
    EXPECT_EQ(text(s), "x 3.14-9223372036854775808");
    EXPECT_EQ(written, 6);
}

template <class A, class B> void expectOrder(const A& a, const B& b, int sign) {
    EXPECT_EQ(a == b, sign == 0);
    EXPECT_EQ(a != b, sign != 0);
    EXPECT_EQ(a < b, sign < 0);
    EXPECT_EQ(a <= b, sign <= 0);
    EXPECT_EQ(a > b, sign > 0);
    EXPECT_EQ(a >= b, sign >= 0);
    const int result = compare(a, b);
    EXPECT_EQ((result > 0) - (result < 0), sign);
}

TEST(qzStr, EveryComparisonFormFollowsByteOrder) {
    const struct {
        const char* a;
        const char* b;
        int sign;
    } rows[] = {{"", "", 0},         {"", "a", -1},  {"abc", "abc", 0},    {"abc", "abd", -1},
                {"abc", "abcd", -1}, {"Z", "a", -1}, {"\x7f", "\x80", -1}, {"b", "aaaa", 1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << '"' << row.a << "\" and \"" << row.b << '"');
        const qzStr a(row.a), b(row.b);
        expectOrder(a, b, row.sign);
        expectOrder(a, row.b, row.sign);
        expectOrder(row.a, b, row.sign);
        expectOrder(b, a, -row.sign);
        EXPECT_EQ(compare(row.a, row.b) < 0, row.sign < 0);
    }
}

TEST(qzStr, EqualitySeesNulsAndOrderStopsAtThem) {
    const qzStr whole("abc\0d", 5), other("abc\0e", 5);
    EXPECT_NE(qzStr(3u), "");
    EXPECT_NE(whole, other);
    EXPECT_NE(whole, "abc");
    EXPECT_NE("abc", whole);
    EXPECT_FALSE(whole == other || whole == "abc" || "abc" == whole);
    EXPECT_FALSE(whole < other || whole > other || whole < "abc" || "abc" < whole);
    EXPECT_EQ(compare(whole, other), 0);
}

// Texts of five to seven bytes count their leading bytes twice.
TEST(qzStr, HashIsTheRecordedFunction) {
    const struct {
        const char* text;
        unsigned hash;
    } rows[] = {{"", 0},
                {"a", 134217728},
                {"ab", 0x13080000},
                {"abc", 0x1b130800},
                {"abcd", 0x231b1308},
                {"abcde", 0x6c636261},
                {"abcdef", 0x776b6261},
                {"abcdefg", 0x7f706a61},
                {"abcdefgh", 0x27585149},
                {"abcdefghXYZ", 0x27585149},
                {"\x80\xff\x90", 0x87fc0000},
                {"\x80\xff\x90\x81\xfe", 0x8190ff80},
                {"\x80\xff\x90\x81\xfe\xfd\xfc\xfb", 0x5e771070}};
    for (const auto& row : rows)
        EXPECT_EQ(qzStr(row.text).hash(), row.hash) << row.text;
    EXPECT_EQ(qzStr("a\0\0\0b", 5).hash(), 0x08000061u);
}

TEST(qzStrDeathTest, TextThatMemoryCannotHoldIsFatal) {
    if (sizeof(void*) != 4) GTEST_SKIP() << "64-bit memory may hold it";
    EXPECT_EXIT(qzStr(0xf0000000u), testing::KilledBySignal(SIGABRT), "out of memory\n$");
}

} // namespace
