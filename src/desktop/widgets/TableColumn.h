#pragma once

#include "ui/modules/WidgetKind.h"

#include <QString>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace quarn::desktop {

/// One column of a list: what a TableView must know of it. The rest (text, sort key, bar) is in the table of
/// columns of each list, see ListModel.
struct TableColumn {
    enum class Align { text, figure }; ///< figures stand at the right
    /// `whenRoom`: as usually, but a narrow table goes without it. The first column is always shown.
    enum class Shown { always, usually, whenRoom, onRequest };
    /// What others leave goes to the first column and to those that grow.
    enum class Width { stays, grows };

    const char* id;      ///< kept in the stored layout, stable
    const char* title;   ///< through the translation hook, as is the next
    const char* meaning; ///< tooltip of the header; may be empty
    Align align = Align::text;
    int width = 10; ///< in digits of the font
    Shown shown = Shown::usually;
    /// The first direction when its header is clicked.
    Qt::SortOrder firstOrder = Qt::AscendingOrder;
    Width spare = Width::stays;
};

/// What the cells of a table tell beside Qt's own roles.
namespace TableRole {
enum {
    barShare = Qt::UserRole + 64, ///< double, 0 to 1: the length of the bar; none when absent
    barKind,                      ///< int of WidgetKind: its hue
    tint,  ///< QColor with alpha over the whole row, asked of column 0; none when absent
    flash, ///< double, 0 to 1: how strongly the cell shows that it changed
    dim,   ///< bool: the text is dim
    tone,  ///< int of CapsuleLabel::Tone: the text is the state in a capsule
};
}

/// A bar behind the text of a cell.
struct CellBar {
    WidgetKind kind;
    double share; ///< 0 to 1
};

/// What rows are ordered by: a number, or a text. What is unknown (NaN, an empty text) comes last in either
/// direction.
struct SortKey {
    static constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

    SortKey() = default;
    SortKey(double value) : number(value) {} // NOLINT(google-explicit-constructor)
    SortKey(std::string_view value)          // NOLINT(google-explicit-constructor)
        : number(value.empty() ? unknown : 0), text(value) {}

    double number = unknown;
    std::string text;
};

/// Negative, 0 or positive. Texts compare without regard to the case of ASCII letters, numbers within them by
/// their value.
int compare(const SortKey& a, const SortKey& b, Qt::SortOrder order);

} // namespace quarn::desktop
