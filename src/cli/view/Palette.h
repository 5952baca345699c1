#pragma once

#include "cli/view/Canvas.h"

#include <array>
#include <string>
#include <string_view>

namespace quarn::cli {

enum class ColourDepth { none, sixteen, indexed, trueColour };
enum class Background { dark, light };

/// The escape sequences that give each Ink its colour on one terminal.
class Palette {
public:
    Palette(ColourDepth depth, Background background);

    /// Sets exactly this style, whatever was set before; empty where colours are off and the style is plain.
    std::string select(Style style) const;

private:
    std::array<std::string, inkCount> codes_; ///< SGR parameters, empty for the terminal's own colour
};

/// What the environment promises, asked for with `variable(name)` (null when unset): NO_COLOR and
/// TERM=dumb for none, COLORTERM or TERM for more than sixteen.
ColourDepth colourDepth(const char* (*variable)(const char*));

} // namespace quarn::cli
