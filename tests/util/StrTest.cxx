#include "util/Str.h"

#include <functional>
#include <map>
#include <random>
#include <sstream>

#include <gtest/gtest.h>

#include "tests/support/AllocationCounter.h"

using namespace std::string_literals;

namespace {

// The whole text, NULs included; every string must be terminated.
std::string text(const qzStr& s) {
    EXPECT_EQ(s.data[s.length()], '\0');
    return std::string(s.data, s.length());
}

TEST(qzStr, EmptyStringsAllocateNothingAndChainsOnce) {
    const qzStr a("a\0b", 3);
    const AllocationCounter counter;
    const qzStr empty(0u), fromNull(static_cast<const char*>(nullptr));
    qzStr changed(empty | "" | fromNull);
    changed.setMaxLength(100);
    changed.append("");
    changed.insert("", 0);
    changed = empty.head(0);
    changed = "";
    const unsigned none = counter.counts().allocations;
    const qzStr chain(a | "c" | a | "");
    const AllocationCounts cost = counter.counts();
    EXPECT_EQ(changed.data, &qzStr::emptyString);
    EXPECT_EQ(text(chain), "a\0bca\0b"s);
    if (const char* reason = AllocationCounter::obstacle()) GTEST_SKIP() << reason;
    EXPECT_EQ(none, 0u);
    EXPECT_EQ(cost.allocations + cost.resizes, 1u);
}

TEST(qzStr, ConstructorsTakeLengthsNotTerminators) {
    const qzStr original("x\0yz", 3), copy(original);
    EXPECT_EQ(text(copy), "x\0y"s);
    EXPECT_EQ(text(qzStr(3u)), "\0\0\0"s);
    EXPECT_EQ(text(qzStr(0)), "0");
}

TEST(qzStr, NumberConstructorsOwnABufferEvenWhenEmpty) {
    for (const qzStr& empty : {qzStr(7, ""), qzStr(7.0f, ""), qzStr(7.0, "")}) {
        EXPECT_NE(empty.data, &qzStr::emptyString);
        EXPECT_EQ(empty, "");
        EXPECT_EQ(qzStr(empty).data, &qzStr::emptyString);
    }
    EXPECT_EQ(text(qzStr(-7)), "-7");
    EXPECT_EQ(text(qzStr(0.1 + 0.2)), "0.3");
    EXPECT_EQ(text(qzStr(0.1 + 0.2, "%.17g")), "0.30000000000000004");
}

TEST(qzStr, ResizeIgnoresFillAndZeroes) {
    qzStr s("abcdef");
    s.resize(2);
    s.resize(5, 'x'); // what the shrink cut off does not come back
    EXPECT_EQ(text(s), "ab\0\0\0"s);
}

TEST(qzStr, ChangesAgreeWithStdString) {
    std::mt19937 random(1);
    const auto below = [&](std::size_t n) { return static_cast<unsigned>(random() % n); };
    // What the operations work on and with; drawn anew for each.
    qzStr s, given;
    std::string model, word, slice; // word is given; slice: n bytes of the model, at from
    unsigned at = 0, from = 0, n = 0, width = 0;
    const struct {
        std::function<void()> change, expected;
    } operations[] = {
        {[&] { s = qzStr(7, ""); }, [&] { model.clear(); }}, // owns a buffer
        {[&] { s.remove(from, n); }, [&] { model.erase(from, n); }},
        {[&] { s.append(s.cut(from, n)); }, [&] { model = model.erase(from, n) + slice; }},
        {[&] { s = s.head(at).tail(at / 2); }, [&] { model = model.substr(at - at / 2, at / 2); }},
        {[&] { s = s.data + from; }, [&] { model = model.c_str() + from; }},
        {[&] { s = static_cast<qzStr&>(s); }, [] {}},
        {[&] { s.replace(s.data + at, 0, s.length() - at); },
         [&] { model.replace(0, model.size() - at, model.substr(at)); }},
        {[&] { s.setMaxLength(at + 9); }, [] {}},
        {[&] { s = given; }, [&] { model = word; }},
        {[&] { s.resize(at + n); }, [&] { model.resize(at + n); }},
        {[&] { s.append(given); }, [&] { model += word; }},
        {[&] { s.append(word[0]); }, [&] { model += word[0]; }},
        {[&] { s.append(n ? s.data + from : "", n); }, [&] { model += slice; }},
        {[&] { s.insert(given.data, at, given.length()); }, [&] { model.insert(at, word); }},
        {[&] { s.insert(n ? s.data + from : "", at, n); }, [&] { model.insert(at, slice); }},
        {[&] { s = s | given.data | given; }, [&] { model += word.c_str() + word; }},
        {[&] { s.format("%*s%c.", width, s.data, 0); },
         [&] { model = std::string(width - std::strlen(model.c_str()), ' ') + model.c_str(); }},
    };
    const unsigned shortening = 9;
    for (int step = 0; step < 20000; ++step) {
        word = "\xe9\0xyz"s.substr(below(5));
        given = qzStr(word.data(), word.size());
        at = below(model.size() + 1);
        from = below(model.size() + 1);
        n = below(model.size() - from + 1);
        slice = model.substr(from, n);
        width = model.size() + below(500);
        const bool hadText = !model.empty();
        const unsigned i = below(model.size() > 600 ? shortening : std::size(operations));
        operations[i].change();
        operations[i].expected();
        ASSERT_EQ(text(s), model) << "step " << step << ", operation " << i;
        const bool released = hadText && model.empty() && i != 0;
        ASSERT_TRUE(!released || s.data == &qzStr::emptyString) << "operation " << i;
    }
}

TEST(qzStr, OnlyLettersChangeCase) {
    qzStr s("azAZ@[`{\0\xe9q", 11);
    s.raise();
    EXPECT_EQ(text(s), "AZAZ@[`{\0\xe9Q"s);
    s.lower();
    EXPECT_EQ(text(s), "azaz@[`{\0\xe9q"s);
}

TEST(qzStr, EveryComparisonFormFollowsByteOrder) {
    const char* const ordered[] = {"", "Z", "aaaa", "abc", "abcd", "b", "\x7f", "\x80"};
    const auto expectOrder = [](const auto& a, const auto& b, int order) {
        EXPECT_TRUE((a == b) == (order == 0) && (a != b) == (order != 0)) << a << " == " << b;
        EXPECT_TRUE((a < b) == (order < 0) && (a <= b) == (order <= 0)) << a << " < " << b;
        EXPECT_TRUE((a > b) == (order > 0) && (a >= b) == (order >= 0)) << a << " > " << b;
    };
    for (const char* const& a : ordered) {
        for (const char* const& b : ordered) {
            const int order = static_cast<int>(&a - &b);
            expectOrder(qzStr(a), qzStr(b), order);
            expectOrder(qzStr(a), b, order);
            expectOrder(a, qzStr(b), order);
        }
    }
    const qzStr whole("abc\0d", 5), other("abc\0e", 5);
    EXPECT_TRUE(whole != other && whole != "abc" && "abc" != whole);
    EXPECT_FALSE(whole < other || whole > other || whole < "abc" || "abc" < whole);
}

TEST(qzStr, HashIsTheRecordedFunction) {
    const std::map<std::string, unsigned> rows = {
        {"abcd", 0x231b1308},         {"abcde", 0x6c636261},
        {"abcdefg", 0x7f706a61},      {"abcdefghXYZ", 0x27585149},
        {"\x80\xff\x90", 0x87fc0000}, {"\x80\xff\x90\x81\xfe\xfd\xfc\xfb", 0x5e771070}};
    for (const auto& [text, hash] : rows)
        EXPECT_EQ(qzStr(text.c_str()).hash(), hash) << text;
}

// Against a search of one byte after the other; `given` is the set as the string
// takes it: bytes and their number, or one byte.
template <class... Given>
void expectFinds(const qzStr& s, const std::string& set, unsigned pos, Given... given) {
    const auto in = [&](unsigned i) { return set.find(s[i]) != std::string::npos; };
    unsigned next = pos, skip = pos, nextR = pos, skipR = pos, after = pos, before = pos;
    while (next < s.length() && !in(next))
        ++next;
    while (skip < s.length() && in(skip))
        ++skip;
    while (nextR > 0 && !in(nextR - 1))
        --nextR;
    while (skipR > 0 && in(skipR - 1))
        --skipR;
    ASSERT_EQ(s.next(pos, given...), next);
    ASSERT_EQ(s.skip(pos, given...), skip);
    ASSERT_EQ(s.nextR(pos, given...), nextR);
    ASSERT_EQ(s.skipR(pos, given...), skipR);
    ASSERT_EQ(s.token(after, given...), s.extract(pos, next - pos));
    ASSERT_EQ(after, s.skip(next, given...));
    ASSERT_EQ(s.tokenR(before, given...), s.extract(nextR, pos - nextR));
    ASSERT_EQ(before, s.skipR(nextR, given...));
}

TEST(qzStr, SearchesAgreeWithAByteByByteModel) {
    // Neighbours of the word edges of a bit set, a NUL and bytes above 0x7f.
    const std::string alphabet = "\0\x1f\x20\x3f\x40\x7f\x80\xa0\xff"s;
    std::mt19937 random(2);
    const auto drawn = [&](unsigned size) {
        std::string made;
        while (made.size() < size)
            made += alphabet[random() % alphabet.size()];
        return made;
    };
    for (int round = 0; round < 3000; ++round) {
        const std::string text = drawn(random() % 24), set = drawn(1 + random() % 4);
        const qzStr s(text.data(), text.size());
        for (unsigned pos = 0; pos <= s.length(); ++pos) {
            ASSERT_NO_FATAL_FAILURE(expectFinds(s, set, pos, set.data(), set.size()));
            ASSERT_NO_FATAL_FAILURE(expectFinds(s, set.substr(0, 1), pos, set[0]));
            ASSERT_NO_FATAL_FAILURE(expectFinds(s, set.c_str(), pos, set.c_str()));
        }
    }
}

TEST(qzStr, TrimmingStopsAtOtherBytes) {
    EXPECT_EQ(qzStr("xa yx").trim("yx"), "a ");
    EXPECT_EQ(qzStr("xa yx").trimRight("yx"), "xa ");
    EXPECT_EQ(qzStr("   ").trim(" "), "");
}

TEST(qzStr, LinesAreReadWholeAndWrittenUpToTheirNul) {
    qzStr::delim_idx = -1; // as if no stream had been given a delimiter
    const std::string lines[] = {" \t", "", std::string("a\0b", 3), "12345678901", "", "last"};
    std::istringstream in(lines[0] + "\n\n" + lines[2] + '\n' + lines[3] + "\n\nlast");
    qzStr s("what was there before");
    for (const std::string& line : lines) {
        ASSERT_TRUE(in >> s);
        EXPECT_EQ(s, qzStr(line.data(), line.size()));
        EXPECT_EQ(in.eof(), line == "last");
    }
    EXPECT_FALSE(in >> s);
    EXPECT_EQ(s.data, &qzStr::emptyString);
    std::ostringstream out;
    out << qzStr("ab\0c", 4) << s << qzStr("d");
    EXPECT_EQ(out.str(), "abd");
}

TEST(qzStr, StreamsWithoutDelimiterReadToNulOnceOneIsSet) {
    qzStr::delim_idx = -1;
    std::istringstream before(std::string("a\nb\nb\0c", 7)), other("x;y\xff-");
    qzStr s;
    before >> s;
    EXPECT_EQ(s, "a");
    _delimiter(other, ';') >> s;
    EXPECT_EQ(s, "x");
    before >> s; // also one that was being read by lines
    EXPECT_EQ(s, "b\nb");
    _delimiter(other, '\xff') >> s; // negative where char is signed
    EXPECT_EQ(s, "y");
}

void expectText(const qzTempStr& temp, const std::string& text, bool inObject) {
    EXPECT_EQ(std::string(temp.data, temp.length() + 1), text + '\0');
    EXPECT_EQ(temp.data == temp.indata, inObject);
}

TEST(qzTempStr, CopyMovesToTheHeapOneEarlier) {
    for (unsigned length : {0u, 49u, 50u, 98u, 99u, 100u, 5000u}) {
        const std::string half(length / 2, 'x'), rest(length - length / 2, 'y');
        const qzTempStr built(half.data(), half.size(), rest.data(), rest.size());
        expectText(built, half + rest, length <= 99);
        qzTempStr grown(half.data(), half.size(), "", 0), copy(built);
        EXPECT_EQ(&grown.concat(rest.data(), rest.size()), &grown);
        expectText(grown, half + rest, length <= 99);
        expectText(copy, half + rest, length <= 98);
        copy.concat("", 0); // a heap block that would fit the object
        copy.concat(copy.data, length);
        expectText(copy, half + rest + half + rest, length <= 49);
    }
}

} // namespace
