#include "util/Str.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdio>
#include <istream>
#include <ostream>
#include <string>

#include "event/Toolkit.h"
#include "util/detail/RawMemory.h"
#include "xdr/Transcriber.h"
#include "xdr/TypeObj.h"

char qzStr::emptyString = 0;
const void* qzStr::textBeingRead = nullptr;
unsigned qzStr::resizeIncrement = 10;
int qzStr::delim_idx = -1;

qzTypeObj qzStr_type("qzStr", 1, qzStr::newInstance, qzStr::deleteInstance, qzStr::xdr);

// The library's start-up is registered here, with what every program uses.
qzOrderedGlobal qzOG_Init(qzOG_Init_cons, qzOG_Init_dest, nullptr, qzOrderedGlobal::toolkit);

namespace {

unsigned textLength(const char* s) { return qzRawLength(std::strlen(s)); }

// Both answer "is this byte wanted" in constant time.
struct OneByte {
    explicit OneByte(char c) : c(c) {}
    bool operator()(char other) const { return other == c; }
    char c;
};

class ByteSet {
  public:
    ByteSet(const char* set, unsigned n) : bits() {
        if (n == 0) n = textLength(set);
        for (unsigned i = 0; i < n; ++i) {
            const unsigned char byte = static_cast<unsigned char>(set[i]);
            bits[byte >> 5] |= 1u << (byte & 31);
        }
    }
    bool operator()(char c) const {
        const unsigned char byte = static_cast<unsigned char>(c);
        return bits[byte >> 5] >> (byte & 31) & 1;
    }

  private:
    unsigned bits[8];
};

// First position at or after pos whose byte is in the set (is not, for
// wanted = false); the length when there is none.
template <class Set> unsigned forward(const qzStr& s, unsigned pos, const Set& set, bool wanted) {
    const unsigned length = s.length();
    for (; pos < length; ++pos) {
        if (set(s.data[pos]) == wanted) return pos;
    }
    return length;
}

unsigned forward(const qzStr& s, unsigned pos, OneByte byte, bool wanted) {
    return wanted ? s.next(pos, byte.c) : forward<OneByte>(s, pos, byte, wanted);
}

// A set that is a C string: the C library's own searches are the fastest there
// are, up to where they stop at a NUL inside the text.
struct CString {
    const char* set;
};

unsigned forward(const qzStr& s, unsigned pos, CString bytes, bool wanted) {
    const unsigned length = s.length();
    if (pos >= length) return length;
    const char* const from = s.data + pos;
    if (!wanted) return pos + static_cast<unsigned>(std::strspn(from, bytes.set));
    pos += static_cast<unsigned>(std::strcspn(from, bytes.set));
    if (pos == length || s.data[pos]) return pos;
    return forward(s, pos, ByteSet(bytes.set, 0), true);
}

// The position just after the last such byte before pos; 0 when there is none.
template <class Set> unsigned backward(const qzStr& s, unsigned pos, const Set& set, bool wanted) {
    assert(pos <= s.length());
    for (; pos > 0; --pos) {
        if (set(s.data[pos - 1]) == wanted) return pos;
    }
    return 0;
}

unsigned backward(const qzStr& s, unsigned pos, OneByte byte, bool wanted) {
    assert(pos <= s.length());
    return wanted ? qzRawFindLast(s.data, byte.c, pos) : backward<OneByte>(s, pos, byte, wanted);
}

template <class Set> qzStr tokenForward(const qzStr& s, unsigned& pos, const Set& set) {
    const unsigned start = pos;
    const unsigned end = forward(s, start, set, true);
    pos = forward(s, end, set, false);
    return s.extract(start, end - start);
}

template <class Set> qzStr tokenBackward(const qzStr& s, unsigned& pos, const Set& set) {
    const unsigned end = pos;
    const unsigned start = backward(s, end, set, true);
    pos = backward(s, start, set, false);
    return s.extract(start, end - start);
}

} // namespace

// Construction

char* qzStr::newText(const char* s, unsigned len) {
    char* text = static_cast<char*>(qzRawAlloc(std::size_t(len) + 1));
    qzMoveText(text, s, len);
    text[len] = 0;
    return text;
}

// A copy of bytes that end with the terminator.
char* qzStr::cloned(const char* s, unsigned bytes) {
    if (bytes <= 1) return &emptyString;
    char* text = static_cast<char*>(qzRawAlloc(bytes));
    if (bytes > 64 && bytes <= 128) { // what a chain of concatenations may leave
        qzMoveText(text, s, 64);
        qzMoveText(text + bytes - 64, s + bytes - 64, 64);
    } else {
        qzMoveText(text, s, bytes);
    }
    return text;
}

qzStr::qzStr(unsigned n) : qzStr() { resize(n); }

qzStr::qzStr(const char* s) : qzStr(s, s ? textLength(s) : 0) {}

qzStr::qzStr(const char* s, unsigned len) : qzStr() {
    if (len == 0) return;
    data = newText(s, len);
    slength = len + 1;
}

qzStr::qzStr(const qzStr& other)
    : slength(other.slength), data(cloned(other.data, other.slength)) {}

qzStr::qzStr(const qzTempStr& temp)
    : slength(temp.slength), data(cloned(temp.data, temp.slength)) {}

qzStr::qzStr(int v, const char* fmt) : qzStr() { format(fmt ? fmt : "%d", v); }

qzStr::qzStr(float v, const char* fmt) : qzStr() { format(fmt ? fmt : "%g", double(v)); }

qzStr::qzStr(double v, const char* fmt) : qzStr() { format(fmt ? fmt : "%lg", v); }

void qzStr::release() { qzRawFree(data); }

// Assignment

bool qzStr::inside(const char* s) const { return qzRawInside(s, data, slength); }

// The one way to grow: makes room for n bytes of text and a terminator and
// leaves slength to the caller.
void qzStr::resizeInternal(unsigned n) {
    assert(n != UINT_MAX);
    if (slength <= 1) {
        if (n == 0) return;
        char* const owned = data == &emptyString ? nullptr : data;
        data = static_cast<char*>(qzRawGrow(owned, std::size_t(n) + 1));
    } else if (n == 0) {
        release();
        data = &emptyString;
    } else if (n >= slength) {
        data = static_cast<char*>(qzRawGrow(data, std::size_t(n) + 1));
    }
}

void qzStr::assign(const char* s, unsigned len) {
    resizeInternal(len); // a part of this text fits already and stays where it is
    qzRawMove(data, s, len);
    slength = len + 1;
    data[len] = 0;
}

qzStr& qzStr::operator=(const qzStr& other) {
    if (this != &other) assign(other.data, other.length());
    return *this;
}

qzStr& qzStr::operator=(qzStr&& other) noexcept {
    if (this == &other) return *this;
    if (data != &emptyString) release();
    slength = other.slength;
    data = other.data;
    other.forget();
    return *this;
}

qzStr& qzStr::operator=(const qzTempStr& temp) {
    assign(temp.data, temp.length());
    return *this;
}

qzStr& qzStr::operator=(const char* s) {
    assert(s);
    assign(s, textLength(s));
    return *this;
}

// Substrings and changes

qzStr qzStr::trim(const char* set) const {
    const unsigned start = skip(0, set);
    const unsigned end = skipR(length(), set);
    return start < end ? extract(start, end - start) : qzStr();
}

void qzStr::lower() {
    for (unsigned i = 0; i < slength; ++i) {
        const unsigned char c = static_cast<unsigned char>(data[i]);
        if (std::isupper(c)) data[i] = static_cast<char>(std::tolower(c));
    }
}

void qzStr::raise() {
    for (unsigned i = 0; i < slength; ++i) {
        const unsigned char c = static_cast<unsigned char>(data[i]);
        if (std::islower(c)) data[i] = static_cast<char>(std::toupper(c));
    }
}

void qzStr::append(const char* s, unsigned len) {
    if (len == 0) len = textLength(s);
    if (len == 0) return;
    const unsigned end = length();
    const bool own = inside(s);
    const auto offset = own ? s - data : 0;
    resizeInternal(qzRawSum(end, len));
    qzRawMove(data + end, own ? data + offset : s, len);
    slength += len;
    data[length()] = 0;
}

void qzStr::append(char c) {
    if (slength > 1) {
        data = static_cast<char*>(qzRawGrow(data, std::size_t(slength) + 1));
    } else {
        resizeInternal(slength);
    }
    data[length()] = c;
    data[slength] = 0;
    ++slength;
}

void qzStr::insert(const char* s, unsigned pos, unsigned len) {
    assert(pos <= length());
    if (len == 0) len = textLength(s);
    if (len == 0) return;
    if (inside(s)) {
        const qzStr taken(s, len); // the gap would tear it apart
        insert(taken.data, pos, len);
        return;
    }
    resizeInternal(qzRawSum(slength, len));
    qzRawMove(data + pos + len, data + pos, length() - pos);
    qzRawMove(data + pos, s, len);
    slength += len;
    data[length()] = 0;
}

void qzStr::insert(char c, unsigned pos) { insert(&c, pos, 1); }

void qzStr::replace(const char* s, unsigned pos, unsigned len) {
    if (len == 0) len = textLength(s);
    assert(pos <= length() && len <= length() - pos);
    qzRawMove(data + pos, s, len);
}

void qzStr::remove(unsigned pos, unsigned len) {
    assert(pos <= length() && len <= length() - pos);
    if (slength - len > 1) {
        qzRawMove(data + pos, data + pos + len, slength - pos - len);
        slength -= len;
    } else {
        if (data != &emptyString) release();
        forget();
    }
}

qzStr qzStr::cut(unsigned pos, unsigned len) {
    qzStr taken = extract(pos, len);
    remove(pos, len);
    return taken;
}

void qzStr::resize(unsigned n, unsigned char) {
    const unsigned kept = length();
    resizeInternal(n);
    if (n > kept) qzRawZero(data + kept, n - kept);
    slength = n + 1;
    if (n) data[n] = 0;
}

void qzStr::setMaxLength(unsigned n) {
    if (length() == 0) return;
    resizeInternal(n > length() ? n : length());
}

// Formatting

// The text in an owned buffer, whatever its length; s is not inside this string.
void qzStr::own(const char* s, unsigned len) {
    if (data == &emptyString || len >= slength) {
        char* text = newText(s, len);
        if (data != &emptyString) release();
        data = text;
    } else {
        qzRawMove(data, s, len + 1);
    }
    slength = len + 1;
}

void qzStr::format(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    vformat(fmt, args);
    va_end(args);
}

// Most renderings fit the local buffer and are done once. The string itself is
// only touched when the text is complete: arguments may point into it.
void qzStr::vformat(const char* fmt, va_list args) {
    char local[512];
    va_list again;
    va_copy(again, args);
    const int wanted = std::vsnprintf(local, sizeof local, fmt, args);
    if (wanted < 0) {
        own("", 0); // no such text: a wide character without a multibyte form, 2 GB and more
    } else if (static_cast<unsigned>(wanted) < sizeof local) {
        own(local, textLength(local));
    } else {
        const std::size_t room = static_cast<std::size_t>(wanted) + 1;
        char* text = static_cast<char*>(qzRawAlloc(room));
        std::vsnprintf(text, room, fmt, again);
        if (data != &emptyString) release();
        data = text;
        slength = textLength(text) + 1;
    }
    va_end(again);
}

// Searching

unsigned qzStr::next(unsigned pos, const char* set, unsigned n) const {
    return n ? forward(*this, pos, ByteSet(set, n), true) : forward(*this, pos, CString{set}, true);
}

unsigned qzStr::skip(unsigned pos, char c) const { return forward(*this, pos, OneByte(c), false); }

unsigned qzStr::skip(unsigned pos, const char* set, unsigned n) const {
    return n ? forward(*this, pos, ByteSet(set, n), false)
             : forward(*this, pos, CString{set}, false);
}

unsigned qzStr::nextR(unsigned pos, char c) const { return backward(*this, pos, OneByte(c), true); }

unsigned qzStr::nextR(unsigned pos, const char* set, unsigned n) const {
    return backward(*this, pos, ByteSet(set, n), true);
}

unsigned qzStr::skipR(unsigned pos, char c) const {
    return backward(*this, pos, OneByte(c), false);
}

unsigned qzStr::skipR(unsigned pos, const char* set, unsigned n) const {
    return backward(*this, pos, ByteSet(set, n), false);
}

qzStr qzStr::token(unsigned& pos, const char* set, unsigned n) const {
    return n ? tokenForward(*this, pos, ByteSet(set, n)) : tokenForward(*this, pos, CString{set});
}

qzStr qzStr::token(unsigned& pos, char c) const { return tokenForward(*this, pos, OneByte(c)); }

qzStr qzStr::tokenR(unsigned& pos, const char* set, unsigned n) const {
    return tokenBackward(*this, pos, ByteSet(set, n));
}

qzStr qzStr::tokenR(unsigned& pos, char c) const { return tokenBackward(*this, pos, OneByte(c)); }

// Little-endian words of the first eight bytes, the second shifted. Deliberate:
// texts of five to seven bytes take their leading bytes a second time instead
// of the fifth and later ones, so that chain layouts recorded in streams stay
// what they are. Pinned by qzStr.HashIsTheRecordedFunction.
unsigned qzStr::hash() const {
    const unsigned n = length();
    if (n >= 8) return qzLoadWord(data + 4) << 3 ^ qzLoadWord(data);
    if (n > 4) {
        const unsigned word = qzLoadWord(data);
        return word << 8 * (8 - n) << 3 ^ word;
    }
    unsigned word = 0;
    for (unsigned i = 0; i < n; ++i) {
        word |= static_cast<unsigned>(static_cast<unsigned char>(data[i])) << 8 * (4 - n + i);
    }
    return word << 3;
}

// Transcription

unsigned char qzStr::xdr(qzTranscriber& t) {
    if (t.isReading()) return read(t);
    if (!t.xdr(&slength, 1)) return 0;
    return slength == 1 || t.xdr(&data, slength);
}

// The transcriber supplies the buffer, perhaps only once the whole graph has
// been read: until then the string must own nothing. What is not a text with its
// terminator leaves the empty string.
unsigned char qzStr::read(qzTranscriber& t) {
    if (data != &emptyString) release();
    forget();
    if (!t.xdr(&slength, 1) || slength == 0) {
        forget();
        return 0;
    }
    if (slength == 1) return 1;
    textBeingRead = &data;
    const unsigned char arrived = t.xdr(&data, slength);
    textBeingRead = nullptr;
    const bool here = data && data != &emptyString; // else it comes later
    if (arrived && data && !(here && data[slength - 1])) return 1;
    if (here) release();
    forget();
    return 0;
}

qzTypeObj& qzStr::getTypeObj() const { return qzStr_type; }

void* qzStr::newInstance(qzTypeObj& type) { return new qzStr(type); }

void qzStr::deleteInstance(void* object) { delete static_cast<qzStr*>(object); }

unsigned char qzStr::xdr(void* object, qzTranscriber& t) {
    return static_cast<qzStr*>(object)->xdr(t);
}

// Streams

std::ostream& operator<<(std::ostream& out, const qzStr& s) { return out << s.data; }

std::istream& operator>>(std::istream& in, qzStr& s) {
    const char delimiter =
        qzStr::delim_idx < 0 ? '\n' : static_cast<char>(in.iword(qzStr::delim_idx));
    std::string text;
    text.reserve(std::min(qzStr::resizeIncrement, 4096u));
    std::getline(in, text, delimiter);
    if (text.size() >= UINT_MAX) { // beyond any string's length
        text.clear();
        in.setstate(std::ios_base::failbit);
    }
    s.resize(static_cast<unsigned>(text.size()));
    qzRawMove(s.data, text.data(), text.size());
    return in;
}

std::istream& _delimiter(std::istream& in, char c) {
    if (qzStr::delim_idx < 0) qzStr::delim_idx = std::ios_base::xalloc();
    in.iword(qzStr::delim_idx) = static_cast<unsigned char>(c);
    return in;
}
