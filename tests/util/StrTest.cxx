#include "util/Str.h"

#include <climits>
#include <functional>
#include <map>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/AllocationCounter.h"

using namespace std::string_literals;

namespace {

// The whole text, NULs included; every string must be terminated.
std::string text(const qzStr& s) {
    EXPECT_EQ(s.data[s.length()], '\0');
    return std::string(s.data, s.length());
}

TEST(qzStr, EmptyStringsShareOneByteAndAllocateNothing) {
    const AllocationCounter counter;
    const qzStr zeroLength(0u), fromNull(static_cast<const char*>(nullptr)), none(zeroLength);
    qzStr changed(none | "" | none);
    changed.setMaxLength(100);
    changed.append("");
    changed.insert("", 0);
    changed = none.head(0);
    changed = "";
    const unsigned cost = counter.counts().allocations;
    for (const qzStr* s : {&zeroLength, &fromNull, &none, &std::as_const(changed)})
        EXPECT_EQ(s->data, &qzStr::emptyString);
    EXPECT_TRUE(cost == 0 || AllocationCounter::obstacle()) << cost;
}

TEST(qzStr, ConstructorsTakeLengthsNotTerminators) {
    const qzStr original("x\0yz", 3), copy(original);
    EXPECT_EQ(text(copy), "x\0y"s);
    EXPECT_NE(copy.data, original.data);
    EXPECT_EQ(text(qzStr(3u)), "\0\0\0"s);
    EXPECT_EQ(text(qzStr(0)), "0");
}

TEST(qzStr, NumberConstructorsOwnABufferEvenWhenEmpty) {
    for (const qzStr& empty : {qzStr(7, ""), qzStr(7.0f, ""), qzStr(7.0, "")}) {
        EXPECT_NE(empty.data, &qzStr::emptyString);
        EXPECT_EQ(empty, "");
        EXPECT_EQ(qzStr(empty).data, &qzStr::emptyString);
    }
    EXPECT_EQ(text(qzStr(INT_MIN)), "-2147483648");
    EXPECT_EQ(text(qzStr(0.1f)), "0.1");
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
        {[&] { s = s.extract(from, n); }, [&] { model = slice; }},
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
    const unsigned shortening = 10;
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
    const std::map<std::string, unsigned> rows = {{"", 0},
                                                  {"abc", 0x1b130800},
                                                  {"abcd", 0x231b1308},
                                                  {"abcde", 0x6c636261},
                                                  {"abcdefg", 0x7f706a61},
                                                  {"abcdefghXYZ", 0x27585149},
                                                  {"\x80\xff\x90", 0x87fc0000},
                                                  {"\x80\xff\x90\x81\xfe\xfd\xfc\xfb", 0x5e771070}};
    for (const auto& [text, hash] : rows)
        EXPECT_EQ(qzStr(text.c_str()).hash(), hash) << text;
}

} // namespace
