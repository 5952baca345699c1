#include "cli/JsonWriter.h"

#include "HelperKit/Utf8.h"

#include <array>
#include <charconv>
#include <cmath>

namespace quarn::cli {
namespace {

constexpr double decimalScale = 1e6;
// Up to here a double times `decimalScale` still holds whole numbers exactly.
constexpr double largestScaled = 9e9;

template <class Number>
void appendNumber(std::string& out, Number value) {
    std::array<char, 32> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    out.append(digits.data(), end);
}

/// `scaled` millionths as a decimal number without trailing zeros.
void appendMillionths(std::string& out, uint64_t scaled) {
    constexpr auto scale = static_cast<uint64_t>(decimalScale);
    appendNumber(out, scaled / scale);
    uint64_t fraction = scaled % scale;
    if (fraction == 0) return;
    std::array<char, 7> digits{'.'};
    size_t used = 1;
    for (size_t i = 6; i > 0; --i, fraction /= 10) {
        digits[i] = static_cast<char>('0' + fraction % 10);
        if (used == 1 && digits[i] != '0') used = i + 1;
    }
    out.append(digits.data(), used);
}

void appendEscaped(std::string& out, char c) {
    constexpr std::string_view hex = "0123456789abcdef";
    switch (c) {
    case '"': out += "\\\""; return;
    case '\\': out += "\\\\"; return;
    case '\n': out += "\\n"; return;
    case '\r': out += "\\r"; return;
    case '\t': out += "\\t"; return;
    default: break;
    }
    const auto byte = static_cast<unsigned char>(c);
    out += "\\u00";
    out += hex[byte >> 4];
    out += hex[byte & 15];
}

// DEL and everything outside ASCII leave the fast path; so does what JSON must escape.
bool isPlain(char c) { return c >= 0x20 && c < 0x7F && c != '"' && c != '\\'; }

} // namespace

void JsonWriter::clear() {
    out_.clear();
    needsComma_ = false;
}

void JsonWriter::key(std::string_view name) {
    separate();
    out_ += '"';
    out_ += name;
    out_ += "\":";
    needsComma_ = false;
}

void JsonWriter::number(int64_t value) {
    separate();
    appendNumber(out_, value);
}

void JsonWriter::number(uint64_t value) {
    separate();
    appendNumber(out_, value);
}

void JsonWriter::number(double value) {
    if (!std::isfinite(value)) return null();
    separate();
    if (std::fabs(value) > largestScaled) return appendNumber(out_, value);
    const auto scaled = std::llround(value * decimalScale);
    if (scaled < 0) out_ += '-';
    appendMillionths(out_, static_cast<uint64_t>(std::llabs(scaled)));
}

void JsonWriter::string(std::string_view value) {
    separate();
    out_ += '"';
    while (!value.empty()) {
        size_t plain = 0;
        while (plain < value.size() && isPlain(value[plain])) ++plain;
        out_ += value.substr(0, plain);
        value.remove_prefix(plain);
        if (value.empty()) break;
        const Utf8Character character = firstCharacter(value);
        if (character.code <= 0x7F) {
            appendEscaped(out_, value.front());
        } else {
            appendCharacter(out_, character.code);
        }
        value.remove_prefix(character.bytes);
    }
    out_ += '"';
}

void JsonWriter::open(char bracket) {
    separate();
    out_ += bracket;
    needsComma_ = false;
}

void JsonWriter::close(char bracket) {
    out_ += bracket;
    needsComma_ = true;
}

void JsonWriter::separate() {
    if (needsComma_) out_ += ',';
    needsComma_ = true;
}

void JsonWriter::raw(std::string_view text) {
    separate();
    out_ += text;
}

} // namespace quarn::cli
