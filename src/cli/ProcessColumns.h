#pragma once

#include "cli/ProcessOrder.h"
#include "cli/TextTable.h"
#include "cli/view/Canvas.h"

#include <optional>
#include <span>
#include <string>

namespace quarn::cli {

/// One column of a list of processes, in a terminal view and in printed text alike.
struct ProcessColumn {
    std::string_view title;
    int width; ///< cells; the least for names and paths
    Align align;
    int rank; ///< a narrow view shows the columns of low rank only
    Ink ink;
    std::optional<ProcessOrder> order; ///< the order that this column shows
    std::string (*text)(const ProcInfo&, const Known&);
};

/// All columns from left to right.
std::span<const ProcessColumn> processColumns();

/// A column with its place in a line.
struct PlacedColumn {
    const ProcessColumn* column;
    int begin;
    int width;
};
/// The columns that fit into `cells`, two blanks apart. What is left over goes to the names and the paths.
std::vector<PlacedColumn> columnsFor(int cells);

} // namespace quarn::cli
