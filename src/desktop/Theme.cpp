#include "desktop/Theme.h"

#include "desktop/ControlStyle.h"

#include <QApplication>
#include <QFont>
#include <QPalette>

namespace quarn::desktop {

namespace {

Theme* installed = nullptr;

QFont scaled(double factor, QFont::Weight weight) {
    QFont font = QApplication::font();
    font.setPointSizeF(font.pointSizeF() * factor);
    font.setWeight(weight);
    return font;
}

QColor mixed(const QColor& a, const QColor& b, double share) {
    const auto mix = [&](double x, double y) { return x + (y - x) * share; };
    return QColor::fromRgbF(static_cast<float>(mix(a.redF(), b.redF())),
                            static_cast<float>(mix(a.greenF(), b.greenF())),
                            static_cast<float>(mix(a.blueF(), b.blueF())));
}

QColor hueOf(WidgetKind kind, bool onDark) {
    const QColor hue = [&] {
        switch (kind) {
        case WidgetKind::cpu: return QColor(0x0072B2);
        case WidgetKind::memory: return QColor(0xCC79A7);
        case WidgetKind::gpu: return QColor(0x009E73);
        case WidgetKind::temperature: return QColor(0xD55E00);
        case WidgetKind::network: return QColor(0x56B4E9);
        case WidgetKind::disk: return QColor(0xE69F00);
        case WidgetKind::power: return QColor(0xB39B00);
        }
        return QColor(0x667080);
    }();
    return onDark ? mixed(hue, Qt::white, 0.22) : hue;
}

/// Of desktops whose panel is dark in their light theme too.
bool panelIsAlwaysDark() {
    const QString desktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP").toLower();
    for (const char* name : {"gnome", "unity", "xfce", "cinnamon", "pantheon", "budgie"})
        if (desktop.contains(QLatin1String(name))) return true;
    return false;
}

constexpr auto sheet = R"(
QToolTip { color: %text; background: %surface; border: 1px solid %line; padding: 4px; }
QFrame#card, QFrame#tile { background: %surface; border: 1px solid %line; border-radius: 8px; }
QFrame#notice { background: %surface; border: 1px solid %warning; border-radius: 8px; }
QPushButton#link { border: 0; padding: 0; background: transparent; color: %link; }
QPushButton#link:hover, QPushButton#link:focus { text-decoration: underline; }
QFrame#tile:hover, QFrame#tile:focus { border-color: %accent; }
QLabel[dim="true"] { color: %dim; }
QLineEdit { background: %surface; border: 1px solid %outline; border-radius: 6px; padding: 4px; }
QAbstractSpinBox QLineEdit { background: transparent; border: 0; padding: 0 4px; }
QLineEdit:focus { border-color: %accent; }
QTreeView, QTableView, QListView { background: %surface; border: 1px solid %line; border-radius: 8px;
  outline: 0; selection-background-color: %selection; selection-color: %text; }
QTreeView::item, QTableView::item { border-bottom: 1px solid %line; padding: 0 6px; }
QTreeView::item:hover, QTableView::item:hover { background: %hover; }
QTreeView::item:selected, QTableView::item:selected { background: %selection; color: %text; }
QHeaderView { background: %surface; }
QHeaderView::section { background: %surface; color: %dim; border: 0; border-bottom: 1px solid %line;
  padding: 5px 6px; }
QAbstractScrollArea::corner { background: transparent; border: 0; }
QTableCornerButton::section { background: %surface; border: 0; }
QScrollArea { background: transparent; border: 0; }
QScrollBar:vertical { background: transparent; width: 12px; margin: 0; }
QScrollBar:horizontal { background: transparent; height: 12px; margin: 0; }
QScrollBar::handle { background: %handle; border-radius: 4px; }
QScrollBar::handle:vertical { min-height: 32px; margin: 0 0 0 4px; }
QScrollBar::handle:horizontal { min-width: 32px; margin: 4px 0 0 0; }
QScrollBar::handle:hover { background: %dim; }
QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }
QSplitter::handle { background: transparent; }
QListView#sidebar { background: transparent; border: 0; }
QListView#sidebar::item { border-radius: 6px; padding: 0 8px; }
QListView#sidebar::item:hover { background: %hover; }
QListView#sidebar::item:selected { background: %selection; color: %text; }
)";

} // namespace

Theme& Theme::current() { return *installed; }

void Theme::install(QApplication& application, Choice choice) {
    if (!installed) installed = new Theme(application);
    installed->choose(choice);
}

Theme::Theme(QApplication& application) : QObject(&application), application_(application) {
    connect(this, &QObject::destroyed, [] { installed = nullptr; });
    // The palette before ours tells whether the desktop is dark.
    dark_ = application.palette().color(QPalette::Window).lightness() < 128;
    trayIsDark_ = dark_ || panelIsAlwaysDark();
}

void Theme::choose(Choice choice) {
    static const bool desktopIsDark = dark_;
    if (choice_ == choice) return;
    choice_ = choice;
    dark_ = choice == Choice::dark || (choice == Choice::system && desktopIsDark);
    apply();
    Q_EMIT changed();
}

void Theme::apply() {
    application_.setStyle(new ControlStyle);
    QPalette palette;
    palette.setColor(QPalette::Window, background());
    palette.setColor(QPalette::Base, surface());
    palette.setColor(QPalette::AlternateBase, background());
    palette.setColor(QPalette::Button, surface());
    palette.setColor(QPalette::ToolTipBase, surface());
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText,
                            QPalette::HighlightedText})
        palette.setColor(role, text());
    palette.setColor(QPalette::PlaceholderText, dim());
    palette.setColor(QPalette::Mid, line());
    palette.setColor(QPalette::Midlight, line());
    palette.setColor(QPalette::Highlight, selection());
    palette.setColor(QPalette::Link, link());
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, dim());
    palette.setColor(QPalette::Disabled, QPalette::Light, surface()); // no etched edge on disabled text
    application_.setPalette(palette);

    QString style = QString::fromLatin1(sheet);
    style.replace("%text", text().name());
    style.replace("%surface", surface().name());
    style.replace("%line", line().name());
    style.replace("%outline", outline().name());
    style.replace("%dim", dim().name());
    style.replace("%accent", accent().name());
    style.replace("%link", link().name());
    style.replace("%warning", warning().name());
    style.replace("%handle", mixed(surface(), text(), 0.25).name());
    style.replace("%hover", hover().name());
    style.replace("%selection", selection().name());
    application_.setStyleSheet(style);
}

QColor Theme::background() const { return dark_ ? QColor(0x15181C) : QColor(0xF6F7F9); }
QColor Theme::surface() const { return dark_ ? QColor(0x1D2126) : QColor(0xFFFFFF); }
QColor Theme::line() const { return dark_ ? QColor(0x2C3138) : QColor(0xE3E6EA); }
QColor Theme::outline() const { return mixed(surface(), text(), 0.2); }
QColor Theme::hover() const { return mixed(surface(), text(), 0.05); }
QColor Theme::selection() const { return mixed(surface(), accent(), dark_ ? 0.35 : 0.18); }
QColor Theme::text() const { return dark_ ? QColor(0xE6E9ED) : QColor(0x1B1F24); }
QColor Theme::dim() const { return dark_ ? QColor(0x939CA8) : QColor(0x667080); }
QColor Theme::accent() const { return kind(WidgetKind::cpu); }
QColor Theme::link() const { return dark_ ? QColor(0x6CB4E4) : accent(); }
QColor Theme::warning() const { return dark_ ? QColor(0xF0B429) : QColor(0xB36B00); }
QColor Theme::critical() const { return dark_ ? QColor(0xF2777A) : QColor(0xC62828); }

QColor Theme::kind(WidgetKind kind, bool second) const { return shade(kind, second ? secondStrength() : 1); }

QColor Theme::shade(WidgetKind of, double strength) const {
    const QColor hue = hueOf(of, dark_);
    if (strength > 1) return mixed(hue, Qt::white, strength - 1);
    return strength > 0 ? mixed(surface(), hue, strength) : line();
}

QColor Theme::trayText() const { return trayIsDark_ ? QColor(0xF2F4F7) : QColor(0x1B1F24); }
QColor Theme::trayKind(WidgetKind kind) const { return hueOf(kind, trayIsDark_); }

QFont Theme::captionFont() { return scaled(11.0 / 13, QFont::Normal); }
QFont Theme::cardTitleFont() { return scaled(1, QFont::DemiBold); }
QFont Theme::pageTitleFont() { return scaled(18.0 / 13, QFont::DemiBold); }
QFont Theme::figureFont() { return scaled(2, QFont::Medium); }

} // namespace quarn::desktop
