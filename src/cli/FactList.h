#pragma once

#include "cli/TerminalText.h"

#include <string>
#include <vector>

namespace quarn::cli {

/// Facts about one thing, a line each, under headings: the names in one column, what they say in the next.
/// Texts may hold anything: they are made safe for a terminal.
class FactList {
public:
    explicit FactList(Charset charset) : charset_(charset) {}

    void heading(std::string text);
    /// An empty `value` shows as unknown, with `reason` in brackets if there is one.
    void add(std::string name, std::string value, std::string reason = {});

    /// All lines, a blank one before each heading but the first.
    std::string text() const;

private:
    struct Line {
        std::string name;
        std::string value;
        bool isHeading = false;
    };

    Charset charset_;
    std::vector<Line> lines_;
};

} // namespace quarn::cli
