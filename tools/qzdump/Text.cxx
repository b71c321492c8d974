#include "tools/qzdump/Text.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace qzdump {

namespace {

const char hexDigits[] = "0123456789abcdef";

bool isPrintable(char c) { return c >= ' ' && c <= '~'; }

void appendHex(std::string& text, char byte) {
    text += hexDigits[static_cast<unsigned char>(byte) >> 4];
    text += hexDigits[static_cast<unsigned char>(byte) & 15];
}

template <class T> std::string number(const char* bytes, const char* format) {
    T value;
    std::memcpy(&value, bytes, sizeof value);
    char text[40];
    std::snprintf(text, sizeof text, format, static_cast<double>(value));
    return text;
}

unsigned widthOf(Style style) {
    switch (style) {
    case Style::Shorts:
        return 2;
    case Style::Longs:
    case Style::Floats:
        return 4;
    case Style::Doubles:
        return 8;
    default:
        return 1;
    }
}

std::string element(const char* bytes, Style style, const ByteOrder& order) {
    switch (style) {
    case Style::Shorts:
        return std::to_string(order.shortAt(bytes));
    case Style::Longs:
        return std::to_string(order.longAt(bytes));
    case Style::Floats:
        return number<float>(bytes, "%.9g");
    case Style::Doubles:
        return number<double>(bytes, "%.17g");
    default:
        std::string hex;
        appendHex(hex, *bytes);
        return hex;
    }
}

} // namespace

std::string printable(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (!isPrintable(c)) {
            result += "\\x";
            appendHex(result, c);
            continue;
        }
        if (c == '"' || c == '\\') result += '\\';
        result += c;
    }
    return result;
}

std::string quoted(std::string_view text) { return '"' + printable(text) + '"'; }

bool looksLikeText(std::string_view data) {
    if (!data.empty() && data.back() == '\0') data.remove_suffix(1);
    const auto escapes = data.size() - std::count_if(data.begin(), data.end(), isPrintable);
    return escapes <= data.size() / 4;
}

std::string hexOffset(std::uint64_t offset) {
    char text[24];
    std::snprintf(text, sizeof text, "%08llx", static_cast<unsigned long long>(offset));
    return text;
}

std::string rendered(std::string_view data, Style style, const ByteOrder& order) {
    if (style == Style::Text) return quoted(data);
    const unsigned width = widthOf(style);
    std::string result;
    while (!data.empty()) {
        const bool whole = data.size() >= width;
        if (!result.empty()) result += ' ';
        result += element(data.data(), whole ? style : Style::Hex, order);
        data.remove_prefix(whole ? width : 1);
    }
    return result;
}

} // namespace qzdump
