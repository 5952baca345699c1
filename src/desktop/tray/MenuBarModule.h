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

namespace quarn::desktop {

/// What a status item shows; the setting `menuBarStyle` holds the number.
enum class MenuBarStyle { valueOnly, graphOnly, both };

/// One status item: the value of its kind as text, a mini graph, or both.
class MenuBarModule : public QObject {
    Q_OBJECT
public:
    /// What an item shows, compared so that an unchanged item is not drawn again.
    struct Rendering {
        MenuBarStyle style = MenuBarStyle::both;
        QString text;
        QColor textColor;
        std::vector<double> graph;
        QColor graphColor;

        bool operator==(const Rendering&) const = default;
    };

    explicit MenuBarModule(WidgetKind kind);
    ~MenuBarModule() override;

    WidgetKind kind() const { return kind_; }
    QSystemTrayIcon& item() { return *item_; }
    int redraws() const { return redraws_; }

    /// How the item looks from now on: its style, the span of its graph in seconds, and whether it is
    /// detailed (twice as many columns).
    void applyLength(MenuBarStyle style, double spanSeconds);
    void applyDetailMode(bool detailed);

    /// Renders the item; `time` is in steady seconds. Draws only when something it shows changed.
    void update(const Reading& reading, double time);

private:
    WidgetKind kind_;
    std::unique_ptr<QSystemTrayIcon> item_;
    GraphBuckets buckets_;
    MenuBarStyle style_ = MenuBarStyle::both;
    double spanSeconds_ = 60;
    bool detailed_ = false;
    std::optional<Rendering> rendered_;
    int redraws_ = 0;
};

} // namespace quarn::desktop
