// qzStr: the string type used everywhere.
//
// A NUL-terminated byte string that owns its buffer; every empty string shares
// one static byte. Text may hold NULs: equality, copies and transcription see
// all of it; ordering, formatting and stream output stop at the first one.
//
// Units: positions and lengths are bytes. slength counts the terminator,
//     length() does not.
// Ownership: `data` is the string's own, from malloc, or &emptyString.
// Trusted: positions, lengths and non-null texts are not checked in release
//     builds. A text argument may point into the string that is changed.
// Errors: none are reported. A buffer that cannot be had is fatal.
// Cost: two words; the empty string allocates nothing. There is no capacity
//     field: text that grows asks the allocator each time, which mostly has the
//     room already (see util/detail/RawMemory.h in the sources).
#ifndef QZ_UTIL_STR_H
#define QZ_UTIL_STR_H

#include <cassert>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <iosfwd>

#include "util/Export.h"

class qzTempStr;
class qzTranscriber;
class qzTypeObj;

// memmove for texts, most of which are short: up to 64 bytes go without a call,
// in two pieces of a fixed size, which overlap where there are fewer.
inline void qzMoveText(char* to, const char* from, unsigned n) {
    struct Half {
        char bytes[32];
    };
    struct Quarter {
        char bytes[16];
    };
    const auto moveEnds = [=](auto first) {
        auto last = first;
        std::memcpy(&first, from, sizeof first);
        std::memcpy(&last, from + n - sizeof last, sizeof last);
        std::memcpy(to, &first, sizeof first);
        std::memcpy(to + n - sizeof last, &last, sizeof last);
    };
    if (n > 64) {
        std::memmove(to, from, n);
    } else if (n >= 32) {
        moveEnds(Half());
    } else if (n >= 16) {
        moveEnds(Quarter());
    } else if (n >= 8) {
        moveEnds(0ll);
    } else if (n >= 4) {
        moveEnds(0);
    } else if (n) {
        const char middle = from[n / 2], last = from[n - 1];
        to[0] = from[0];
        to[n / 2] = middle;
        to[n - 1] = last;
    }
}

class QZ_EXPORT qzStr {
  public:
    qzStr() : slength(1), data(&emptyString) {}
    // n NUL characters: a zero-filled string, not room for n. Write qzStr(0u)
    // for the empty string: a plain 0 is an int and gives "0", as a character
    // does: qzStr('a') is "97".
    qzStr(unsigned n);
    // Null is the empty string.
    qzStr(const char* s);
    // The first len bytes of s, NULs included; len 0 is the empty string.
    qzStr(const char* s, unsigned len);
    qzStr(const qzStr& other);
    qzStr(qzStr&& other) noexcept : slength(other.slength), data(other.data) { other.forget(); }
    qzStr(const qzTempStr& temp);
    // The number as text, through fmt or "%d", "%g", "%lg". Deliberate: these
    // always own a buffer, even for an empty text, so judge emptiness by
    // length(). Pinned by qzStr.NumberConstructorsOwnABufferEvenWhenEmpty.
    qzStr(int v, const char* fmt = nullptr);
    qzStr(float v, const char* fmt = nullptr);
    qzStr(double v, const char* fmt = nullptr);
    // An empty string for a reader to fill.
    explicit qzStr(qzTypeObj&) : qzStr() {}
    ~qzStr() {
        if (data != &emptyString) std::free(data);
    }

    qzStr& operator=(const qzStr& other);
    qzStr& operator=(qzStr&& other) noexcept;
    qzStr& operator=(const qzTempStr& temp);
    qzStr& operator=(const char* s); // not null

    // Access
    unsigned length() const { return slength - 1; }
    const char* c_str() const { return data; }
    char& operator[](unsigned i) {
        assert(i < slength);
        return data[i];
    }
    char operator[](unsigned i) const {
        assert(i < slength);
        return data[i];
    }

    // Substrings
    qzStr extract(unsigned pos, unsigned len) const {
        assert(pos <= length() && len <= length() - pos);
        return qzStr(data + pos, len);
    }
    qzStr head(unsigned n) const { return extract(0, n); }
    qzStr tail(unsigned n) const { return extract(length() - n, n); }
    qzStr copy() const { return *this; }
    // Without the leading and trailing (trailing) bytes that are in set.
    qzStr trim(const char* set) const;
    qzStr trimRight(const char* set) const { return extract(0, skipR(length(), set)); }

    // Changes
    void lower();
    void raise(); // to upper case
    // Here and below a len of 0 means strlen(s).
    void append(const char* s, unsigned len = 0);
    void append(const qzStr& s) {
        if (s.length()) append(s.data, s.length());
    }
    void append(char c);
    void insert(const char* s, unsigned pos, unsigned len = 0);
    void insert(char c, unsigned pos);
    // Overwrites; the length never changes.
    void replace(const char* s, unsigned pos, unsigned len = 0);
    // The buffer is kept unless no text remains.
    void remove(unsigned pos, unsigned len);
    qzStr cut(unsigned pos, unsigned len);
    // Deliberate: fill is ignored, growth is always zero-filled; callers lay
    // out binary records in strings and rely on it. Pinned by
    // qzStr.ResizeIgnoresFillAndZeroes. Shrinking keeps the buffer, 0 releases it.
    void resize(unsigned n, unsigned char fill = 0);
    // Room for n bytes of text; nothing for the empty string.
    void setMaxLength(unsigned n);
    // The printf-style rendering replaces the text, up to its first NUL.
    // Arguments may point into this string. Always owns a buffer afterwards.
    void format(const char* fmt, ...) __attribute__((format(printf, 2, 3)));
    void vformat(const char* fmt, va_list args) __attribute__((format(printf, 2, 0)));

    // Searching. Sets are n bytes, strlen(set) when n is 0; what a byte of text
    // costs does not depend on the size of the set.
    //
    // Index of the first byte at or after pos that is c (is in set); length()
    // when there is none. skip: that is not.
    unsigned next(unsigned pos, char c) const {
        if (pos >= length()) return length();
        const void* hit = std::memchr(data + pos, static_cast<unsigned char>(c), length() - pos);
        return hit ? static_cast<unsigned>(static_cast<const char*>(hit) - data) : length();
    }
    unsigned next(unsigned pos, const char* set, unsigned n = 0) const;
    unsigned skip(unsigned pos, char c) const;
    unsigned skip(unsigned pos, const char* set, unsigned n = 0) const;
    // Backwards from pos - 1: the position just after the first such byte; 0
    // when there is none.
    unsigned nextR(unsigned pos, char c) const;
    unsigned nextR(unsigned pos, const char* set, unsigned n = 0) const;
    unsigned skipR(unsigned pos, char c) const;
    unsigned skipR(unsigned pos, const char* set, unsigned n = 0) const;
    // The text from pos to the next delimiter; pos moves past the whole run of
    // delimiters after it. Delimiters at pos itself yield an empty token.
    qzStr token(unsigned& pos, const char* set, unsigned n = 0) const;
    qzStr token(unsigned& pos, char c) const;
    // The same from the end: start with pos = length().
    qzStr tokenR(unsigned& pos, const char* set, unsigned n = 0) const;
    qzStr tokenR(unsigned& pos, char c) const;

    // The key hash of string-keyed containers; equal strings hash alike.
    // Constant cost: at most the first eight bytes count.
    unsigned hash() const;

    // Transcription
    unsigned char xdr(qzTranscriber& t);
    qzTypeObj& getTypeObj() const;
    static void* newInstance(qzTypeObj& type);
    static void deleteInstance(void* object);
    static unsigned char xdr(void* object, qzTranscriber& t);

    unsigned slength; // text bytes + 1; the empty string has 1
    char* data;       // never null, NUL at data[slength - 1]

    static char emptyString;         // what every empty string points at
    static unsigned resizeIncrement; // first room that operator>> takes, bytes
    static int delim_idx;            // index of a stream's delimiter word; -1 until used

  private:
    // A reader asks whether the member that it is to fill is a string's, which
    // will free what it gets and refuses text without its NUL.
    friend class qzBinaryReader;
    static const void* textBeingRead; // the address of that string's `data`, or null

    static char* newText(const char* s, unsigned len);
    static char* cloned(const char* s, unsigned bytes);
    void resizeInternal(unsigned n);
    void assign(const char* s, unsigned len);
    void own(const char* s, unsigned len);
    unsigned char read(qzTranscriber& t);
    void forget() {
        slength = 1;
        data = &emptyString;
    }
    void release();
    bool inside(const char* s) const;
};

static_assert(sizeof(void*) != 4 || sizeof(qzStr) == 8, "containers store strings as 8-byte slots");

extern QZ_EXPORT qzTypeObj qzStr_type;

// Whether c is one of the n bytes of set.
inline bool quickFind(char c, const char* set, unsigned n) {
    return n && std::memchr(set, static_cast<unsigned char>(c), n);
}

// Equality takes the whole text, NULs included; a text with a NUL inside is
// never equal to the C string that ends there. Unequal lengths decide at once.
inline bool operator==(const qzStr& a, const qzStr& b) {
    return a.slength == b.slength && std::memcmp(a.data, b.data, a.slength) == 0;
}
inline bool operator==(const qzStr& a, const char* b) {
    return a.length() == std::strlen(b) && std::memcmp(a.data, b, a.slength) == 0;
}
inline bool operator==(const char* a, const qzStr& b) { return b == a; }
inline bool operator!=(const qzStr& a, const qzStr& b) { return !(a == b); }
inline bool operator!=(const qzStr& a, const char* b) { return !(a == b); }
inline bool operator!=(const char* a, const qzStr& b) { return !(b == a); }

// Order is strcmp's: bytes as unsigned values up to the first NUL. Two texts
// can so be unequal and yet neither less than the other.
inline int compare(const char* a, const char* b) { return std::strcmp(a, b); }
inline int compare(const qzStr& a, const qzStr& b) { return std::strcmp(a.data, b.data); }
inline int compare(const qzStr& a, const char* b) { return std::strcmp(a.data, b); }
inline int compare(const char* a, const qzStr& b) { return std::strcmp(a, b.data); }

inline bool operator<(const qzStr& a, const qzStr& b) { return compare(a, b) < 0; }
inline bool operator<(const qzStr& a, const char* b) { return compare(a, b) < 0; }
inline bool operator<(const char* a, const qzStr& b) { return compare(a, b) < 0; }
inline bool operator<=(const qzStr& a, const qzStr& b) { return compare(a, b) <= 0; }
inline bool operator<=(const qzStr& a, const char* b) { return compare(a, b) <= 0; }
inline bool operator<=(const char* a, const qzStr& b) { return compare(a, b) <= 0; }
inline bool operator>(const qzStr& a, const qzStr& b) { return compare(a, b) > 0; }
inline bool operator>(const qzStr& a, const char* b) { return compare(a, b) > 0; }
inline bool operator>(const char* a, const qzStr& b) { return compare(a, b) > 0; }
inline bool operator>=(const qzStr& a, const qzStr& b) { return compare(a, b) >= 0; }
inline bool operator>=(const qzStr& a, const char* b) { return compare(a, b) >= 0; }
inline bool operator>=(const char* a, const qzStr& b) { return compare(a, b) >= 0; }

// Writes the text up to its first NUL.
QZ_EXPORT std::ostream& operator<<(std::ostream& out, const qzStr& s);

// Reads up to the delimiter, which is consumed and not stored: newline, or what
// _delimiter() set on the stream. An empty line gives the empty string and
// leaves the stream good; the end of input with nothing read sets failbit, so
// that `while (in >> s)` ends.
//
// Deliberate: once any stream has been given a delimiter, every stream without
// one of its own reads up to NUL: the delimiter word of a stream starts as 0.
// Pinned by qzStr.StreamsWithoutDelimiterReadToNulOnceOneIsSet.
QZ_EXPORT std::istream& operator>>(std::istream& in, qzStr& s);

// Sets the stream's delimiter for operator>> and returns the stream.
QZ_EXPORT std::istream& _delimiter(std::istream& in, char c);

// Concatenation, a | b
#include "util/TempStr.h"

#endif
