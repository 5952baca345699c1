#include "cli/TerminalText.h"

#include "HelperKit/Utf8.h"

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdlib>
#include <cwchar>

namespace quarn::cli {
namespace {

constexpr char32_t replacement = 0xFFFD;

struct Range {
    char32_t first;
    char32_t last;
};
// Shapeless characters that the library's widths do not mark: they hide, join, reorder or restyle others.
constexpr std::array<Range, 16> shapeless{{
    {0x00AD, 0x00AD},   // soft hyphen
    {0x034F, 0x034F},   // joiner of graphemes
    {0x061C, 0x061C},   // direction mark
    {0x115F, 0x1160},   // Hangul fillers
    {0x17B4, 0x17B5},   // invisible vowels
    {0x180B, 0x180F},   // variation selectors, vowel separator
    {0x200B, 0x200F},   // zero-width blanks and joiners, direction marks
    {0x2028, 0x202E},   // line and paragraph ends, directions
    {0x2060, 0x206F},   // word joiner, isolates, deprecated formats
    {0x3164, 0x3164},   // Hangul filler
    {0xFE00, 0xFE0F},   // variation selectors
    {0xFEFF, 0xFEFF},   // byte-order mark
    {0xFFA0, 0xFFA0},   // half-width Hangul filler
    {0xFFF0, 0xFFFC},   // interlinear annotations, object replacement
    {0x1D173, 0x1D17A}, // musical formats
    {0xE0000, 0xE0FFF}, // tags, variation selectors
}};

bool isShapeless(char32_t code) {
    return std::any_of(shapeless.begin(), shapeless.end(),
                       [&](const Range& range) { return code >= range.first && code <= range.last; });
}

/// The C library's widths are those that terminals follow, but it gives them in a UTF-8 locale only. The
/// caller's locale is left as it is.
int libraryWidth(char32_t code) {
    static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    if (utf8 == nullptr) return 1;
    const locale_t former = uselocale(utf8);
    const int width = wcwidth(static_cast<wchar_t>(code));
    uselocale(former);
    return width;
}

struct Symbol {
    char32_t code;
    char ascii;
};
constexpr std::array<Symbol, 20> symbols{{
    {U'—', '-'}, {U'–', '-'}, {U'·', '-'}, {U'…', '~'}, {U'−', '-'}, {U'▼', '*'},  {U'▲', '*'},
    {U'━', '='}, {U'╸', '-'}, {U'─', '.'}, {U'▁', '_'}, {U'▂', '.'}, {U'▃', '-'},  {U'▄', '~'},
    {U'▅', '='}, {U'▆', '+'}, {U'▇', '*'}, {U'█', '#'}, {U'°', ' '}, {U'’', '\''},
}};

char asciiOf(char32_t code) {
    const auto* symbol =
        std::find_if(symbols.begin(), symbols.end(), [&](const Symbol& s) { return s.code == code; });
    return symbol == symbols.end() ? '?' : symbol->ascii;
}

} // namespace

Charset charsetOfEnvironment() {
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value == nullptr || *value == '\0') continue;
        const std::string_view locale(value);
        const auto names = [&](std::string_view form) { return locale.find(form) != std::string_view::npos; };
        const bool utf8 = names("UTF-8") || names("utf8") || names("UTF8") || names("utf-8");
        return utf8 ? Charset::utf8 : Charset::ascii;
    }
    return Charset::ascii;
}

Glyph takeGlyph(std::string_view& text, Charset charset) {
    const Utf8Character character = firstCharacter(text);
    text.remove_prefix(character.bytes);
    const char32_t code = character.code;
    if (code >= 0x20 && code < 0x7F) return {code, 1};
    if (charset == Charset::ascii) return {static_cast<char32_t>(asciiOf(code)), 1};
    if (code < 0xA0 || isShapeless(code)) return {replacement, 1};
    const int cells = libraryWidth(code);
    if (cells < 0) return {replacement, 1};
    return {code, cells};
}

int cellsOf(std::string_view text, Charset charset) {
    int cells = 0;
    while (!text.empty()) cells += takeGlyph(text, charset).cells;
    return cells;
}

std::string fitted(std::string_view text, int cells, Charset charset) {
    std::string result;
    if (cells <= 0) return result;
    int used = 0;
    size_t keep = 0; // how much of the result still leaves room for the mark of a cut
    while (!text.empty()) {
        const Glyph glyph = takeGlyph(text, charset);
        if (used + glyph.cells > cells) {
            result.resize(keep);
            return result + (charset == Charset::ascii ? "~" : "…");
        }
        used += glyph.cells;
        appendCharacter(result, glyph.code);
        if (used < cells) keep = result.size();
    }
    return result;
}

} // namespace quarn::cli
