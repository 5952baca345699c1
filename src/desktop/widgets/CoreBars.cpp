#include "desktop/widgets/CoreBars.h"

#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/widgets/TextValue.h"
#include "ui/modules/CoreLayout.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <cmath>

namespace quarn::desktop {

namespace {

constexpr int numberWidth = 26;
constexpr int figureWidth = 40;
constexpr int barHeight = 8;
constexpr size_t mostSpoken = 64; ///< cores; more would take a screen reader minutes

/// What is busy in the hue of the CPU, the kernel's part of it at the end, lighter.
void paintBar(QPainter& painter, const QRectF& whole, double busy, double system, Qt::Orientation direction) {
    const auto& theme = Theme::current();
    painter.fillRect(whole, theme.line());
    const auto part = [&](double from, double to) {
        from = std::clamp(from / 100, 0.0, 1.0);
        to = std::clamp(to / 100, 0.0, 1.0);
        if (direction == Qt::Horizontal)
            return QRectF(whole.left() + from * whole.width(), whole.top(), (to - from) * whole.width(),
                          whole.height());
        return QRectF(whole.left(), whole.bottom() - to * whole.height(), whole.width(),
                      (to - from) * whole.height());
    };
    const double user = std::max(0.0, busy - system);
    painter.fillRect(part(0, user), theme.kind(WidgetKind::cpu));
    painter.fillRect(part(user, busy), theme.kind(WidgetKind::cpu, true));
}

} // namespace

CoreBars::CoreBars(QWidget* parent) : QWidget(parent) {
    setTextValue(this, {});
    setMinimumWidth(200);
}

void CoreBars::show(const std::vector<double>& busy, const std::vector<double>& system) {
    if (busy == busy_ && system == system_) return;
    const bool resized = busy.size() != busy_.size();
    busy_ = busy;
    system_ = system;
    if (resized) fit();
    QStringList spoken;
    for (size_t i = 0; i < std::min(busy_.size(), mostSpoken); ++i) spoken.append(describe(i));
    setTextValue(this, spoken.join("; "));
    update();
}

void CoreBars::fit() { setFixedHeight(coreLayout(busy_.size(), width()).height()); }
void CoreBars::resizeEvent(QResizeEvent*) { fit(); }

void CoreBars::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setFont(Theme::captionFont());
    const auto& theme = Theme::current();
    const CoreLayout layout = coreLayout(busy_.size(), width());
    for (size_t core = 0; core < busy_.size(); ++core) {
        const double system = core < system_.size() ? system_[core] : 0;
        const QRectF cell(layout.x(core), layout.y(core), layout.cellWidth, layout.cellHeight);
        if (!layout.labelled) {
            if (core % static_cast<size_t>(layout.columns) == 0) {
                painter.setPen(theme.dim());
                painter.drawText(QRectF(0, cell.top(), layout.labelWidth - Theme::gap, cell.height()),
                                 Qt::AlignRight | Qt::AlignVCenter, QString::number(core));
            }
            paintBar(painter, cell, busy_[core], system, Qt::Vertical);
            continue;
        }
        painter.setPen(theme.dim());
        painter.drawText(QRectF(cell.left(), cell.top(), numberWidth - Theme::gap, cell.height()),
                         Qt::AlignRight | Qt::AlignVCenter, QString::number(core));
        paintBar(painter,
                 QRectF(cell.left() + numberWidth, cell.center().y() - barHeight / 2.0,
                        cell.width() - numberWidth - figureWidth, barHeight),
                 busy_[core], system, Qt::Horizontal);
        painter.setPen(theme.text());
        painter.drawText(cell, Qt::AlignRight | Qt::AlignVCenter, say("%1 %").arg(std::lround(busy_[core])));
    }
}

QString CoreBars::describe(size_t core) const {
    const double system = core < system_.size() ? system_[core] : 0;
    return say("Core %1: %2 % busy, %3 % in the kernel")
        .arg(core)
        .arg(std::lround(busy_[core]))
        .arg(std::lround(system));
}

bool CoreBars::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QWidget::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const CoreLayout layout = coreLayout(busy_.size(), width());
    for (size_t core = 0; core < busy_.size(); ++core) {
        const QRect cell =
            QRectF(layout.x(core), layout.y(core), layout.cellWidth, layout.cellHeight).toRect();
        if (cell.contains(help->pos())) QToolTip::showText(help->globalPos(), describe(core), this, cell);
    }
    return true;
}

} // namespace quarn::desktop
