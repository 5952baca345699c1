#include "desktop/MainWindow.h"

#include "desktop/Icon.h"
#include "desktop/SearchField.h"
#include "desktop/Sidebar.h"
#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/UiState.h"
#include "history/History.h"
#include "ui/settings/Prefs.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QPointer>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace quarn::desktop {

MainWindow::MainWindow(Monitor& monitor, Prefs& prefs, const LiveHistory& history, History& records)
    : prefs_(prefs),
      context_{monitor, prefs, history, records.apps(), records.metrics(), records.live(), *this},
      sidebar_(new Sidebar(prefs)),
      search_(new SearchField(*this, context_.apps, [this] { return snapshot_.processes; })),
      stack_(new QStackedWidget) {
    setWindowTitle("Quarn");
    setWindowIcon(icon("quarn"));
    setMinimumSize(720, 480);

    auto* left = new QVBoxLayout;
    left->setContentsMargins(Theme::gap, 2 * Theme::gap, 0, Theme::gap);
    left->addWidget(search_);
    left->addWidget(sidebar_, 1);
    auto* body = new QWidget;
    auto* row = new QHBoxLayout(body);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    auto* column = new QWidget;
    column->setFixedWidth(196);
    column->setLayout(left);
    row->addWidget(column);
    row->addWidget(stack_, 1);
    setCentralWidget(body);

    connect(sidebar_, &Sidebar::chosen, this, [this](const QString& id) { open(id); });
    addShortcuts();
    records.apps().observeList([self = QPointer<MainWindow>(this)] {
        if (self) self->showApplications();
    });
    if (!restoreGeometry(UiState::bytes("window/geometry"))) resize(1200, 800);
    open(firstPage());
    sidebar_->setFocus();
}

MainWindow::~MainWindow() = default;

QString MainWindow::firstPage() const {
    const auto shown = sidebarPages(prefs_.sidebarLayout.get());
    if (prefs_.rememberPage.get())
        if (QString last = UiState::text("window/page"); shown.contains(last)) return last;
    const auto& table = pageTable();
    const auto start = static_cast<size_t>(prefs_.startPage.get());
    return start < table.size() ? QString(table[start].id) : shown.first();
}

Page* MainWindow::page(const QString& id) {
    if (const auto found = pages_.find(id); found != pages_.end()) return found->second;
    for (const auto& entry : pageTable()) {
        if (id != entry.id) continue;
        Page* made = entry.make(context_);
        stack_->addWidget(made);
        pages_.emplace(id, made);
        return made;
    }
    return nullptr;
}

void MainWindow::open(const QString& id, const QString& search) {
    Page* shown = page(id);
    if (!shown) return;
    if (!search.isEmpty()) shown->search(search);
    if (current_ != id) {
        current_ = id;
        stack_->setCurrentWidget(shown);
        sidebar_->select(id);
        UiState::setText("window/page", id);
    }
    followApplications();
    showCurrent();
}

/// All of the current page, before the next snapshot comes.
void MainWindow::showCurrent() {
    if (snapshot_.generation == 0) return;
    page(current_)->refresh(snapshot_, known_);
    showApplications();
}

void MainWindow::showApplications() {
    const auto list = context_.apps.latest();
    if (list && applications_) page(current_)->showApplications(*list, snapshot_, known_);
}

void MainWindow::followApplications() {
    const bool areWanted = isVisible() && page(current_)->needsApplications();
    if (!areWanted) return applications_.reset();
    if (!applications_) applications_.emplace(context_.apps);
}

void MainWindow::refresh(const Snapshot& snapshot, const Known& known) {
    snapshot_ = snapshot;
    known_ = known;
    if (isVisible() && !isMinimized()) page(current_)->refresh(snapshot_, known_);
}

void MainWindow::settingsChanged() {
    sidebar_->reload();
    if (isVisible() && !isMinimized()) showCurrent();
}

void MainWindow::present() {
    if (isMinimized()) showNormal();
    show();
    raise();
    activateWindow();
}

void MainWindow::addShortcuts() {
    for (int i = 0; i < 9; ++i) {
        auto* shortcut = new QShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + i)), this);
        connect(shortcut, &QShortcut::activated, this, [this, i] {
            const auto shown = sidebarPages(prefs_.sidebarLayout.get());
            if (i < shown.size()) open(shown[i]);
        });
    }
    connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_K), this), &QShortcut::activated, search_,
            [this] { search_->setFocus(Qt::ShortcutFocusReason); });
    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QWidget::close);
    connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Comma), this), &QShortcut::activated, this,
            [this] { open("settings"); });
}

void MainWindow::closeEvent(QCloseEvent* event) {
    UiState::setBytes("window/geometry", saveGeometry());
    QMainWindow::closeEvent(event);
    Q_EMIT closed();
}

void MainWindow::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    followApplications();
    Q_EMIT visibilityChanged(true);
}

void MainWindow::hideEvent(QHideEvent* event) {
    QMainWindow::hideEvent(event);
    followApplications();
    Q_EMIT visibilityChanged(false);
}

} // namespace quarn::desktop
