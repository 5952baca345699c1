#include "cli/live/KeyReader.h"

#include "core/Scan.h"

namespace quarn::cli {
namespace {

constexpr char escape = '\x1b';
constexpr char bell = '\x07';
constexpr size_t longestAnswer = 64;
/// All that the terminal's answer consists of. Anything else was typed: Alt+] sends the same beginning.
constexpr std::string_view answerCharacters = "0123456789abcdefABCDEFrg:;/";

/// A channel of one to four hexadecimal digits as a share of its largest value; nullopt for anything else.
std::optional<double> channel(std::string_view digits) {
    const auto value = digits.size() <= 4 ? scutil::toNumber<unsigned>(digits, 16) : std::nullopt;
    if (!value) return {};
    const unsigned largest = (1u << (4 * digits.size())) - 1;
    return static_cast<double>(*value) / largest;
}

} // namespace

void KeyReader::feed(std::string_view bytes) {
    for (const char c : bytes) take(c);
}

void KeyReader::take(char c) {
    switch (state_) {
    case State::plain:
        if (c == escape) {
            state_ = State::escape;
        } else if (onKey) {
            onKey(c);
        }
        return;
    case State::escape: // what follows tells the kind of sequence
        text_.clear();
        if (c == escape) return;
        state_ = c == '['   ? State::control
                 : c == 'O' ? State::oneMore
                 : c == ']' ? State::text
                            : State::plain;
        return;
    case State::control:
        if (c >= 0x40 && c <= 0x7E) state_ = State::plain;
        return;
    case State::oneMore: state_ = State::plain; return;
    case State::text:
    case State::textEscape: takeText(c); return;
    }
}

void KeyReader::takeText(char c) {
    if (c == bell || (state_ == State::textEscape && c == '\\')) return finishText();
    const bool belongs =
        state_ == State::text && (c == escape || answerCharacters.find(c) != std::string::npos);
    if (!belongs || text_.size() == longestAnswer) {
        state_ = State::plain;
        return take(c);
    }
    if (c == escape)
        state_ = State::textEscape;
    else
        text_ += c;
}

void KeyReader::finishText() {
    state_ = State::plain;
    const auto background = parseBackground(text_);
    if (background && onBackground) onBackground(*background);
}

std::optional<Background> parseBackground(std::string_view answer) {
    constexpr std::string_view prefix = "11;rgb:";
    if (!answer.starts_with(prefix)) return {};
    answer.remove_prefix(prefix.size());
    const auto red = channel(scutil::takeUntil(answer, '/'));
    const auto green = channel(scutil::takeUntil(answer, '/'));
    const auto blue = channel(answer);
    if (!red || !green || !blue) return {};
    const double luminance = 0.2126 * *red + 0.7152 * *green + 0.0722 * *blue;
    return luminance > 0.5 ? Background::light : Background::dark;
}

} // namespace quarn::cli
