#include "desktop/tray/MenuBarModule.h"

#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/tray/StatusIcon.h"
#include "ui/modules/LiveHistory.h"
#include "ui/modules/Scale.h"

#include <QSystemTrayIcon>
#include <algorithm>
#include <cmath>

namespace quarn::desktop {

namespace {

/// The columns as shares of the scale, rounded to what can be told apart in a tray.
std::vector<double> shares(const GraphBuckets& buckets, WidgetKind kind) {
    constexpr double steps = 32;
    double top = fullScale(kind);
    if (top <= 0) {
        double largest = 0;
        for (const double value : buckets.buckets())
            if (value > largest) largest = value;
        top = niceTop(largest);
    }
    std::vector<double> shares(buckets.bucketCount(), -1);
    auto out = shares.end() - static_cast<std::ptrdiff_t>(buckets.buckets().size());
    for (const double value : buckets.buckets()) {
        *out++ = std::isnan(value) ? -1 : std::round(std::clamp(value / top, 0.0, 1.0) * steps) / steps;
    }
    return shares;
}

} // namespace

MenuBarModule::MenuBarModule(WidgetKind kind) : kind_(kind) { renewItem(); }
MenuBarModule::~MenuBarModule() = default;

void MenuBarModule::renewItem() {
    auto* const menu = item_ ? item_->contextMenu() : nullptr;
    item_ = std::make_unique<QSystemTrayIcon>();
    item_->setContextMenu(menu);
    item_->setToolTip(say(Reading::title(kind_).c_str()));
    connect(item_.get(), &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger) Q_EMIT clicked();
        if (reason == QSystemTrayIcon::MiddleClick) Q_EMIT middleClicked();
    });
    rendered_.reset();
}

void MenuBarModule::applyLength(MenuBarStyle style, double spanSeconds, const LiveHistory& history) {
    style_ = style;
    if (spanSeconds == spanSeconds_) return;
    spanSeconds_ = spanSeconds;
    buckets_.reset(buckets_.bucketCount());
    replay(history);
}

void MenuBarModule::applyDetailMode(bool detailed, const LiveHistory& history) {
    const size_t columns = detailed ? detailedColumns : compactColumns;
    if (columns == buckets_.bucketCount() && !buckets_.buckets().empty()) return;
    buckets_.reset(columns);
    replay(history);
}

void MenuBarModule::replay(const LiveHistory& history) {
    const auto times = history.times();
    for (size_t i = 0; i < times.size(); ++i)
        if (times[i] >= times.back() - spanSeconds_)
            pushSample(history.sum(seriesOf(kind_), i), times[i], slice());
}

void MenuBarModule::pushSample(double value, double time, std::optional<double> sliceSeconds) {
    buckets_.pushSample(value, time, spanSeconds_, sliceSeconds);
}

double MenuBarModule::slice() const {
    // Ticks come a little early or late: a slice of whole ticks must not wait for one more.
    constexpr double early = 0.9;
    return early * spanSeconds_ / static_cast<double>(buckets_.bucketCount());
}

void MenuBarModule::update(const Reading& reading, double time) {
    pushSample(reading.value(kind_), time, slice());
    show(reading);
}

void MenuBarModule::show(const Reading& reading) {
    const QString text = toQt(reading.menuBarText(kind_)).simplified();
    const QString tip =
        QString("%1: %2\n%3").arg(say(Reading::title(kind_).c_str()), text, toQt(reading.caption(kind_)));
    if (item_->toolTip() != tip) item_->setToolTip(tip);
    auto next = rendering(reading);
    if (rendered_ == next) return;
    item_->setIcon(statusIcon(next));
    rendered_ = std::move(next);
    ++redraws_;
}

MenuBarModule::Rendering MenuBarModule::rendering(const Reading& reading) const {
    Rendering result;
    result.style = style_;
    if (style_ != MenuBarStyle::graphOnly) {
        result.text = toQt(reading.menuBarText(kind_));
        result.figure = toQt(reading.shortText(kind_));
    }
    if (style_ != MenuBarStyle::valueOnly) result.graph = shares(buckets_, kind_);
    result.textColor = Theme::current().trayText();
    result.graphColor = Theme::current().trayKind(kind_);
    return result;
}

} // namespace quarn::desktop
