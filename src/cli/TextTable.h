#pragma once

#include "cli/TerminalText.h"

#include <string>
#include <vector>

namespace quarn::cli {

enum class Align { left, right };

/// Rows of cells printed in columns that are as wide as their content. Cells may hold anything: they are made
/// safe for a terminal.
class TextTable {
public:
    struct Column {
        std::string_view title;
        Align align = Align::left;
    };

    TextTable(std::vector<Column> columns, Charset charset);

    void add(std::vector<std::string> cells); ///< one for each column
    /// The table, each line with its line feed and without blanks at its end; only the titles when empty.
    std::string text() const;

private:
    struct Fitted {
        std::string text;
        int width;
    };
    using Row = std::vector<Fitted>;

    Fitted fit(std::string_view text) const;

    std::vector<Column> columns_;
    Charset charset_;
    std::vector<Row> rows_;
};

} // namespace quarn::cli
