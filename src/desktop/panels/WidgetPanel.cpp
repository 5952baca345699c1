#include "desktop/panels/WidgetPanel.h"

#include "desktop/Icon.h"
#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/UiState.h"
#include "desktop/panels/Placement.h"
#include "desktop/panels/WindowHints.h"
#include "desktop/widgets/FlashLabel.h"
#include "desktop/widgets/ReadingView.h"
#include "desktop/widgets/RoundedSurface.h"
#include "ui/modules/LiveHistory.h"

#include <QEnterEvent>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QScreen>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWindow>

namespace quarn::desktop {

namespace {

constexpr int panelGraphHeight = 32, crossSize = 20;
constexpr int panelCharacters = 33; ///< wide: "read 99.9 MB/s, write 99.9 MB/s" fits

QString frameKey(WidgetKind kind) { return "panels/" + toQt(widgetKindId(kind)); }

QList<QRect> screens() {
    QList<QRect> result;
    for (const QScreen* screen : QGuiApplication::screens()) result << screen->availableGeometry();
    return result;
}

} // namespace

WidgetPanel::WidgetPanel(WidgetKind kind)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint),
      kind_(kind),
      view_(new ReadingView(kind, panelGraphHeight)),
      closeButton_(new QToolButton(this)) {
    const QString title = say(Reading::title(kind).c_str());
    setWindowTitle(say("Quarn – %1").arg(title));
    setAttribute(Qt::WA_TranslucentBackground); // for its round corners
    setAttribute(Qt::WA_ShowWithoutActivating);
    auto* column = new QVBoxLayout(this);
    constexpr int side = Theme::cardPadding - FlashLabel::bleed;
    column->setContentsMargins(side, Theme::cardPadding, side, Theme::cardPadding);
    column->addWidget(view_);
    setFixedSize(panelCharacters * fontMetrics().averageCharWidth(), sizeHint().height());
    closeButton_->setIcon(icon("close"));
    closeButton_->setAutoRaise(true);
    closeButton_->setFixedSize(crossSize, crossSize);
    closeButton_->setToolTip(say("Close this panel"));
    closeButton_->setAccessibleName(say("Close the panel %1").arg(title));
    closeButton_->hide();
    connect(closeButton_, &QToolButton::clicked, this, &WidgetPanel::dismissed);
    constexpr int saveAfterMs = 500;
    saveSoon_.setSingleShot(true);
    saveSoon_.setInterval(saveAfterMs);
    connect(&saveSoon_, &QTimer::timeout, this, &WidgetPanel::movedByDesktop);
}

WidgetPanel::~WidgetPanel() = default;

void WidgetPanel::update(const Reading& reading, const LiveHistory& history, double span) {
    view_->show(reading, history, span);
}

void WidgetPanel::apply(const PanelStyle& style) {
    if (style_ == style) return;
    if (windowFlags().testFlag(Qt::WindowStaysOnTopHint) != style.onTop) {
        const bool shown = isVisible();
        const QPoint at = pos();
        setWindowFlag(Qt::WindowStaysOnTopHint, style.onTop); // which hides it
        if (shown) {
            move(at);
            show();
        }
    }
    style_ = style;
    view_->setFlashes(style.flashes);
    setHovered(hovered_);
}

void WidgetPanel::applyTheme() {
    QWidget::update();
    view_->applyTheme();
}

bool WidgetPanel::restoreFrame() {
    const auto frame = UiState::frame(frameKey(kind_));
    if (!frame) return false;
    place(keptVisible(QRect(frame->topLeft(), size()), screens()));
    return true;
}

void WidgetPanel::keepVisible() {
    if (placed_) place(keptVisible(geometry(), screens()));
}

void WidgetPanel::saveFrame() {
    saveSoon_.stop();
    if (placed_ && canPlaceWindows()) UiState::setFrame(frameKey(kind_), QRect(place_, size()));
}

void WidgetPanel::cascade(const QList<QRect>& taken) {
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        place(cascadePlace(size(), screen->availableGeometry(), taken));
}

void WidgetPanel::place(const QRect& frame) {
    placed_ = true;
    place_ = frame.topLeft();
    move(place_);
}

void WidgetPanel::setHovered(bool hovered) {
    hovered_ = hovered;
    closeButton_->setVisible(hovered);
    setWindowOpacity(hovered || !style_ ? 1 : style_->opacity);
}

void WidgetPanel::enterEvent(QEnterEvent*) { setHovered(true); }
void WidgetPanel::leaveEvent(QEvent*) { setHovered(false); }

void WidgetPanel::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    if (!canPlaceWindows() && windowHandle())
        windowHandle()->startSystemMove();
    else
        grip_ = event->globalPosition().toPoint() - pos();
}

void WidgetPanel::mouseMoveEvent(QMouseEvent* event) {
    if (grip_) move(event->globalPosition().toPoint() - *grip_);
}

void WidgetPanel::mouseReleaseEvent(QMouseEvent*) {
    if (!grip_) return;
    grip_.reset();
    placed_ = true;
    place_ = pos();
    saveFrame();
}

void WidgetPanel::moveEvent(QMoveEvent* event) {
    // The desktop can move it too, by its own key and the pointer.
    if (event->spontaneous() && placed_ && !grip_) saveSoon_.start();
}

void WidgetPanel::movedByDesktop() {
    if (pos().isNull()) return; // what a window manager that comes or goes reports of every window
    place_ = pos();
    saveFrame();
}

void WidgetPanel::resizeEvent(QResizeEvent*) {
    closeButton_->move(width() - crossSize - 6, 6);
    closeButton_->raise();
}

void WidgetPanel::showEvent(QShowEvent*) { keepOutOfTaskbar(*this); }

void WidgetPanel::paintEvent(QPaintEvent*) { paintRoundedSurface(*this); }

} // namespace quarn::desktop
