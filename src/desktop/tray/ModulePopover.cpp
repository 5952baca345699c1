#include "desktop/tray/ModulePopover.h"

#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/panels/WindowHints.h"
#include "desktop/widgets/DetailList.h"
#include "desktop/widgets/FlashLabel.h"
#include "desktop/widgets/ReadingView.h"
#include "desktop/widgets/RoundedSurface.h"
#include "ui/modules/LiveHistory.h"

#include <QEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace quarn::desktop {

namespace {

constexpr int popoverCharacters = 42, popoverGraphHeight = 56;

bool hasProcesses(WidgetKind kind) {
    return kind == WidgetKind::cpu || kind == WidgetKind::memory || kind == WidgetKind::disk;
}

QLabel* dimLabel() {
    auto* label = new QLabel;
    label->setFont(Theme::captionFont());
    label->setTextFormat(Qt::PlainText);
    label->setProperty("dim", true);
    return label;
}

} // namespace

ModulePopover::ModulePopover(WidgetKind kind, PopoverDetail detail)
    : QFrame(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint),
      kind_(kind),
      detail_(detail),
      view_(new ReadingView(kind, popoverGraphHeight)),
      spanText_(dimLabel()),
      none_(dimLabel()) {
    setAttribute(Qt::WA_TranslucentBackground); // for its round corners
    setWindowTitle(say("Quarn – %1").arg(say(Reading::title(kind).c_str())));
    setFixedWidth(popoverCharacters * fontMetrics().averageCharWidth());
    auto* whole = new QVBoxLayout(this);
    constexpr int padding = Theme::cardPadding + 2, side = padding - FlashLabel::bleed;
    whole->setContentsMargins(side, padding, side, padding);
    whole->setSpacing(2);
    whole->addWidget(view_);
    auto* column = new QVBoxLayout;
    column->setContentsMargins(FlashLabel::bleed, 0, FlashLabel::bleed, 0);
    column->setSpacing(2);
    whole->addLayout(column);
    column->addWidget(spanText_);
    column->addSpacing(Theme::gap);
    addLists(*column);
    column->addSpacing(Theme::gap);
    auto* open = new QPushButton(say("Open Quarn"));
    open->setAutoDefault(true);
    connect(open, &QPushButton::clicked, this, &ModulePopover::openQuarn);
    column->addWidget(open);
    open->setFocus();
}

void ModulePopover::addLists(QVBoxLayout& column) {
    const auto heading = [&](const QString& text) {
        auto* label = dimLabel();
        label->setText(text);
        column.addWidget(label);
    };
    const bool full = detail_ == PopoverDetail::full;
    if (hasProcesses(kind_)) {
        heading(say("Busiest processes"));
        processes_ = new DetailList(full ? 10 : 5);
        column.addWidget(processes_);
    }
    none_->setWordWrap(true);
    column.addWidget(none_);
    if (processes_ && !full) return;
    if (processes_) {
        column.addSpacing(Theme::gap);
        heading(say("In detail"));
    }
    parts_ = new DetailList(5);
    column.addWidget(parts_);
}

void ModulePopover::update(const Reading& reading, const LiveHistory& history, double span) {
    view_->show(reading, history, span);
    spanText_->setText(say("The last %1 s").arg(span, 0, 'f', 0));
    size_t lines = 0;
    if (processes_) {
        auto busiest = busiestProcesses(reading, kind_, detail_ == PopoverDetail::full ? 10 : 5);
        lines += busiest.size();
        processes_->setLines(std::move(busiest));
    }
    if (parts_) {
        constexpr size_t most = 10;
        auto parts = detailLines(reading, kind_, most);
        lines += parts.size();
        parts_->setRows(static_cast<int>(parts.size()));
        parts_->setLines(std::move(parts));
    }
    none_->setVisible(lines == 0);
    none_->setText(hasProcesses(kind_) ? say("No process uses any now, as far as is known.")
                                       : say("This computer tells no more about it."));
    if (processes_) processes_->setVisible(lines > 0);
    setAccessibleName(view_->spoken());
    adjustSize();
}

void ModulePopover::showEvent(QShowEvent* event) {
    QFrame::showEvent(event);
    keepOutOfTaskbar(*this);
}

void ModulePopover::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange && !isActiveWindow() && isVisible()) close();
    QFrame::changeEvent(event);
}

void ModulePopover::closeEvent(QCloseEvent* event) {
    QFrame::closeEvent(event);
    Q_EMIT closed();
}

void ModulePopover::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QFrame::keyPressEvent(event);
}

void ModulePopover::paintEvent(QPaintEvent*) { paintRoundedSurface(*this); }

} // namespace quarn::desktop
