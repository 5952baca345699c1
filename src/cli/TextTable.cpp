#include "cli/TextTable.h"

#include <algorithm>

namespace quarn::cli {
namespace {

constexpr int longestCell = 4096;
constexpr size_t columnGap = 2;

} // namespace

TextTable::TextTable(std::vector<Column> columns, Charset charset)
    : columns_(std::move(columns)), charset_(charset) {
    Row titles;
    for (const Column& column : columns_) titles.push_back(fit(column.title));
    rows_.push_back(std::move(titles));
}

TextTable::Fitted TextTable::fit(std::string_view text) const {
    std::string safe = fitted(text, longestCell, charset_);
    const int width = cellsOf(safe, Charset::utf8);
    return {std::move(safe), width};
}

void TextTable::add(std::vector<std::string> cells) {
    Row row;
    for (const std::string& cell : cells) row.push_back(fit(cell));
    rows_.push_back(std::move(row));
}

std::string TextTable::text() const {
    std::vector<int> widths(columns_.size());
    for (const Row& row : rows_) {
        for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].width);
    }
    std::string result;
    for (const Row& row : rows_) {
        for (size_t i = 0; i < row.size(); ++i) {
            const auto padding = static_cast<size_t>(widths[i] - row[i].width);
            if (i > 0) result.append(columnGap, ' ');
            if (columns_[i].align == Align::right) result.append(padding, ' ');
            result += row[i].text;
            if (columns_[i].align == Align::left) result.append(padding, ' ');
        }
        result.erase(result.find_last_not_of(' ') + 1);
        result += '\n';
    }
    return result;
}

} // namespace quarn::cli
