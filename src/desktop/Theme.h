#pragma once

#include "ui/modules/WidgetKind.h"
#include "ui/settings/PrefTypes.h"

#include <QColor>
#include <QObject>
#include <QString>
#include <optional>

class QApplication;

namespace quarn::desktop {

/// Colours, sizes and fonts of every surface: the one place that names them. Widgets ask when they paint, so
/// a change of theme needs no more than a repaint.
class Theme : public QObject {
    Q_OBJECT
public:
    using Choice = AppTheme;

    /// The application's; made by `install`.
    static Theme& current();
    /// Gives the application its palette, style and style sheet; with `system` follows the desktop.
    static void install(QApplication& application, Choice choice);

    /// Repaints everything when the choice is another one.
    void choose(Choice choice);
    bool isDark() const { return dark_; }

    QColor background() const; ///< of the window
    QColor surface() const;    ///< of cards and tables
    QColor line() const;       ///< hair lines, grids, frames
    QColor outline() const;    ///< of what a person can press or type in
    QColor hover() const;      ///< a surface under the pointer
    QColor selection() const;
    QColor text() const;
    QColor dim() const; ///< captions, units, what is unknown
    QColor accent() const;
    QColor link() const; ///< text that acts, readable as text
    QColor warning() const;
    QColor critical() const;
    /// The hue of a kind of reading; `second` is that of its second series (system share, sent, written).
    QColor kind(WidgetKind kind, bool second = false) const;
    /// The hue of a kind nearer to the surface below 1, for parts of one whole (0 is what is empty), and
    /// nearer to white above it.
    QColor shade(WidgetKind kind, double strength) const;
    float barOpacity() const { return dark_ ? 0.42F : 0.26F; }   ///< of bars behind figures
    double secondStrength() const { return dark_ ? 1.5 : 0.65; } ///< the shade that is the second series
    /// The same for items in the desktop's panel. Panels do not tell their colour: many are dark whatever the
    /// windows are, the others follow the desktop.
    QColor trayText() const;
    QColor trayKind(WidgetKind kind) const;

    /// The 8-pixel grid.
    static constexpr int gap = 8, cardPadding = 12, corner = 8, rowHeight = 26;
    /// Point sizes derived from the system's font, which is the body: caption, card title, page title,
    /// figure.
    static QFont captionFont();
    static QFont cardTitleFont();
    static QFont pageTitleFont();
    static QFont figureFont();

Q_SIGNALS:
    void changed();

private:
    explicit Theme(QApplication& application);
    void apply();

    QApplication& application_;
    std::optional<Choice> choice_;
    bool dark_ = false;
    bool trayIsDark_ = false;
};

} // namespace quarn::desktop
