#pragma once

#include "cli/view/Palette.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quarn::cli {

/// Takes apart what a terminal sends: plain keys are reported, escape sequences (arrow keys, mouse, late
/// answers) are swallowed whole, however they are cut into reads.
class KeyReader {
public:
    std::function<void(char)> onKey;
    /// The terminal's answer to `askBackground`.
    std::function<void(Background)> onBackground;

    void feed(std::string_view bytes);

private:
    enum class State { plain, escape, control, oneMore, text, textEscape };

    void take(char c);
    void takeText(char c);
    void finishText();

    State state_ = State::plain;
    std::string text_; ///< of an operating-system command, cut to what can matter
};

/// Asks the terminal for its background colour.
inline constexpr std::string_view askBackground = "\x1b]11;?\x1b\\";

/// The kind of background in an answer ("11;rgb:1d1d/2121/2626"); nullopt for anything else.
std::optional<Background> parseBackground(std::string_view answer);

} // namespace quarn::cli
