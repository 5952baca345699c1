#pragma once

#include "ui/modules/GraphBuckets.h"
#include "ui/modules/WidgetKind.h"

#include <QColor>
#include <QObject>
#include <QString>
#include <memory>
#include <optional>
#include <vector>

class QSystemTrayIcon;

namespace quarn {
class LiveHistory;
}

namespace quarn::desktop {

/// What a status item shows; the setting `menuBarStyle` holds the number.
enum class MenuBarStyle { valueOnly, graphOnly, both };

/// One status item: the value of its kind as text, a mini graph, or both. Nothing is drawn while nothing that
/// shows changes, so an item of an idle machine costs nothing, neither here nor in the desktop's panel.
class MenuBarModule : public QObject {
    Q_OBJECT
public:
    /// What an item shows, compared so that an unchanged item is not drawn again.
    struct Rendering {
        MenuBarStyle style = MenuBarStyle::both;
        QString text;   ///< the whole reading, `menuBarText`; empty when no value is shown
        QString figure; ///< what of it fits into the square
        QColor textColor;
        /// Heights of the columns as shares of the scale, in steps that can be seen; −1 without a reading.
        /// Empty when no graph is shown.
        std::vector<double> graph;
        QColor graphColor;

        bool operator==(const Rendering&) const = default;
    };

    explicit MenuBarModule(WidgetKind kind);
    ~MenuBarModule() override;

    WidgetKind kind() const { return kind_; }
    /// The item; made anew by `renewItem`. Who owns the module shows it in the tray.
    QSystemTrayIcon& item() { return *item_; }
    const std::optional<Rendering>& rendered() const { return rendered_; }
    int redraws() const { return redraws_; }
    bool isDetailed() const { return buckets_.bucketCount() == detailedColumns; }

    /// How the item looks from now on: its style and the span of its graph in seconds, 15 columns long. A
    /// graph that changes its length begins with what `history` knows.
    void applyLength(MenuBarStyle style, double spanSeconds, const LiveHistory& history);
    /// A detailed item has a graph of 30 columns.
    void applyDetailMode(bool detailed, const LiveHistory& history);

    /// Takes a value into the graph; `time` in steady seconds.
    void pushSample(double value, double time, std::optional<double> sliceSeconds = {});
    /// Takes the reading into the graph and shows it.
    void update(const Reading& reading, double time);
    /// Shows the reading. Draws only when something that shows changed.
    void show(const Reading& reading);

    /// Takes the item out of the tray; the new one is not shown yet.
    void renewItem();

Q_SIGNALS:
    void clicked();
    void middleClicked();

private:
    static constexpr size_t compactColumns = 15, detailedColumns = 30;

    void replay(const LiveHistory& history);
    double slice() const;
    Rendering rendering(const Reading& reading) const;

    WidgetKind kind_;
    std::unique_ptr<QSystemTrayIcon> item_;
    GraphBuckets buckets_{compactColumns};
    MenuBarStyle style_ = MenuBarStyle::both;
    double spanSeconds_ = 60;
    std::optional<Rendering> rendered_;
    int redraws_ = 0;
};

} // namespace quarn::desktop
