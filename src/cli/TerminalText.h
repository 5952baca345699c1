#pragma once

#include <string>
#include <string_view>

/// Text as a terminal shows it. Names of processes, paths and volumes come from strangers: what could move
/// the cursor, change colours, hide or reorder text never reaches the terminal.
namespace quarn::cli {

/// What the terminal can show. With `ascii` the program's own symbols become plain ones ("—" a "-") and other
/// characters a "?".
enum class Charset { utf8, ascii };

/// That of the locale which the environment asks for.
Charset charsetOfEnvironment();

/// One character made safe.
struct Glyph {
    char32_t code = ' ';
    int cells = 1; ///< 2 for wide characters, 0 for a mark that joins the character before
};

/// Takes the first character of `text`, which must not be empty. Controls, formatting characters without a
/// shape and ill-formed bytes answer U+FFFD, so that a doctored name is seen to be one.
Glyph takeGlyph(std::string_view& text, Charset charset);

/// How many cells `text` takes once it is made safe.
int cellsOf(std::string_view text, Charset charset);

/// `text` made safe and at most `cells` wide; what had to be cut ends with "…".
std::string fitted(std::string_view text, int cells, Charset charset);

} // namespace quarn::cli
