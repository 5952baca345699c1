#include "cli/view/ProcessTable.h"

#include "cli/ProcessColumns.h"
#include "ui/modules/Format.h"

namespace quarn::cli {
namespace {

/// A figure that says nothing (a zero, an unknown) steps back behind those that do.
bool isQuiet(std::string_view text) {
    return text == format::unknown || text == "0.0" || text == "0 B" || text == "0 B/s";
}

void drawCell(Canvas& canvas, int row, int begin, const PlacedColumn& place, std::string_view text,
              Style style) {
    const int from = begin + place.begin;
    if (place.column->align == Align::right) {
        canvas.putRight(row, from, from + place.width, text, style);
    } else {
        canvas.put(row, from, text, style, from + place.width);
    }
}

void drawHead(Canvas& canvas, Strip strip, const std::vector<PlacedColumn>& columns, ProcessOrder order) {
    for (const PlacedColumn& place : columns) {
        const ProcessColumn& column = *place.column;
        if (column.order != order) {
            drawCell(canvas, strip.row, strip.begin, place, column.title, {Ink::dim});
            continue;
        }
        const bool ascending = order == ProcessOrder::pid || order == ProcessOrder::name;
        const char* arrow = ascending ? "▲" : "▼";
        std::string title(column.title);
        // The arrow of a figure takes the gap before it, so that the title stays over its figures.
        if (column.align == Align::right) {
            canvas.put(strip.row, strip.begin + place.begin + place.width - canvas.width(title) - 1, arrow,
                       {Ink::text, Weight::bold});
        } else {
            title += arrow;
        }
        drawCell(canvas, strip.row, strip.begin, place, title, {Ink::text, Weight::bold});
    }
}

} // namespace

void drawProcesses(Canvas& canvas, Strip top, int rows, const Snapshot& snapshot,
                   const FrameOptions& options) {
    if (rows <= 0) return;
    const std::vector<PlacedColumn> columns = columnsFor(top.width());
    drawHead(canvas, top, columns, options.order);
    const auto shown =
        ordered(snapshot.processes, options.order, static_cast<size_t>(rows - 1), options.known);
    for (const ProcInfo* process : shown) {
        ++top.row;
        for (const PlacedColumn& place : columns) {
            const std::string text = place.column->text(*process, options.known);
            drawCell(canvas, top.row, top.begin, place, text, {isQuiet(text) ? Ink::dim : place.column->ink});
        }
    }
}

} // namespace quarn::cli
