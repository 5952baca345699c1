// All applications as they are now, and the chosen one in detail.
#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/applications/AppDetails.h"
#include "desktop/applications/AppModel.h"
#include "desktop/pages/Pages.h"
#include "desktop/widgets/PageSearch.h"
#include "desktop/widgets/TableView.h"
#include "monitor/AppWatch.h"
#include "ui/settings/Prefs.h"

#include <QMenu>
#include <QShortcut>
#include <QSplitter>
#include <QTimer>
#include <QVBoxLayout>

namespace quarn::desktop {

namespace {

constexpr int roomForBoth = 880; ///< pixels from which the details stand at the right
constexpr int detailsWidth = 340;
constexpr AppField mayBeUnknown[]{AppField::disk, AppField::network, AppField::energy};

class ApplicationsPage final : public Page {
public:
    explicit ApplicationsPage(PageContext& context);
    void refresh(const Snapshot& snapshot, const Known& known) override;
    bool needsApplications() const override { return true; }
    void showApplications(const ResourceAppList& list, const Snapshot& snapshot, const Known& known) override;
    void search(const QString& text) override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void connectAll();
    void tell();
    void showMenu(const QPoint& at);
    void showProcesses();
    void showHistory();
    void openDetails();
    void closeDetails();
    void showDetails();
    void giveRoom();
    const AppRow* current() const;

    AppModel model_;
    TableView* view_;
    PageSearch* search_;
    AppDetails* details_;
    QSplitter* splitter_;
    QString sentence_; ///< on all applications
};

ApplicationsPage::ApplicationsPage(PageContext& context)
    : Page(context, say("Applications")),
      view_(new TableView("applications", TableView::Shape::tree)),
      search_(new PageSearch(*this, *view_, say("Search applications"),
                             say("Name of an application or of one of its processes, path or PID"))),
      details_(new AppDetails(context)),
      splitter_(new QSplitter) {
    contentFills();
    addTool(search_);
    splitter_->addWidget(view_);
    splitter_->addWidget(details_);
    splitter_->setStretchFactor(0, 1);
    splitter_->setChildrenCollapsible(false);
    splitter_->setHandleWidth(Theme::gap);
    details_->hide();
    content().addWidget(splitter_, 1);
    view_->setAccessibleName(say("Applications"));
    view_->setContextMenuPolicy(Qt::CustomContextMenu);
    view_->setSelectionMode(QAbstractItemView::SingleSelection);
    view_->setEmptyText(say("Looking at the processes …"));
    setSentence(say("Looking at the processes …"));
    view_->show(model_, static_cast<int>(AppField::cpu), Qt::DescendingOrder);
    connectAll();
}

void ApplicationsPage::connectAll() {
    connect(search_, &QLineEdit::textChanged, this, [this](const QString& text) {
        model_.setSearch(text);
        tell();
    });
    connect(view_, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) { showMenu(at); });
    connect(view_, &QAbstractItemView::doubleClicked, this, [this] { showProcesses(); });
    connect(view_, &QAbstractItemView::clicked, this, [this] { openDetails(); });
    connect(view_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this] { showDetails(); });
    connect(details_, &AppDetails::closed, this, [this] { closeDetails(); });
    connect(details_, &AppDetails::processesWanted, this, [this] { showProcesses(); });
    connect(details_, &AppDetails::historyWanted, this, [this] { showHistory(); });
    const auto shortcut = [this](const QKeySequence& keys, auto work) {
        connect(new QShortcut(keys, view_, nullptr, nullptr, Qt::WidgetWithChildrenShortcut),
                &QShortcut::activated, this, work);
    };
    shortcut(Qt::Key_Escape, [this] { closeDetails(); });
    shortcut(Qt::Key_Return, [this] { openDetails(); });
    shortcut(Qt::Key_Enter, [this] { openDetails(); });
}

void ApplicationsPage::refresh(const Snapshot& snapshot, const Known&) {
    if (snapshot.processes.empty()) setSentence(say("No process can be read"));
}

void ApplicationsPage::showApplications(const ResourceAppList& list, const Snapshot& snapshot,
                                        const Known& known) {
    const size_t cores = snapshot.cpu.perCore.size();
    model_.take(context_.apps.latest(), known, appStyle(context_.prefs, cores));
    for (const AppField field : mayBeUnknown)
        view_->setColumnUnknown(static_cast<int>(field),
                                model_.rows().tells(field) ? QString() : say(whyUntold(field)));
    sentence_ = toQt(appSentence(list, known, cores));
    tell();
    view_->setEmptyText(list.apps.empty()
                            ? say("No process can be read.")
                            : say("No application matches. Clear the search (Esc) to see all."));
    showDetails();
}

void ApplicationsPage::search(const QString& text) {
    search_->setText(text);
    view_->setFocus();
}

void ApplicationsPage::tell() {
    if (!search_->text().trimmed().isEmpty())
        setSentence(say("%1 of %2 applications shown")
                        .arg(model_.rows().matching())
                        .arg(model_.rows().applications()));
    else if (!sentence_.isEmpty())
        setSentence(sentence_);
}

const AppRow* ApplicationsPage::current() const {
    const QModelIndex index = view_->currentIndex();
    return index.isValid() ? &model_.row(index) : nullptr;
}

void ApplicationsPage::showProcesses() {
    const AppRow* row = current();
    if (!row) return;
    context_.navigator.open("processes", row->process ? QString::number(row->process->pid)
                                                      : toQt(processSearch(*row->app)));
}

void ApplicationsPage::showHistory() {
    if (const AppRow* row = current()) context_.navigator.open("history", toQt(historyKey(*row->app)));
}

void ApplicationsPage::showMenu(const QPoint& at) {
    if (!current()) return;
    QMenu menu;
    menu.addAction(say("Details"), this, [this] { openDetails(); })->setShortcut(Qt::Key_Return);
    menu.addAction(say("Show processes"), this, [this] { showProcesses(); });
    menu.addAction(say("Show history"), this, [this] { showHistory(); });
    menu.addAction(say("Copy"), view_, &TableView::copySelection)->setShortcut(QKeySequence::Copy);
    menu.addSeparator();
    menu.addAction(say("Open all applications"), view_, &QTreeView::expandAll);
    menu.addAction(say("Close all applications"), view_, &QTreeView::collapseAll);
    menu.exec(view_->viewport()->mapToGlobal(at));
}

void ApplicationsPage::openDetails() {
    if (!current() || !details_->isHidden()) return;
    details_->setVisible(true);
    giveRoom();
    showDetails();
    // Once the table has got its new size.
    QTimer::singleShot(0, view_, [this] { view_->scrollTo(view_->currentIndex()); });
}

void ApplicationsPage::closeDetails() {
    details_->hide();
    view_->setFocus();
}

void ApplicationsPage::showDetails() {
    const AppRow* row = current();
    if (row && !details_->isHidden()) details_->show(*row->app, model_.rows().known(), model_.style());
}

void ApplicationsPage::resizeEvent(QResizeEvent* event) {
    Page::resizeEvent(event);
    const auto orientation = width() >= roomForBoth ? Qt::Horizontal : Qt::Vertical;
    if (splitter_->orientation() == orientation) return;
    splitter_->setOrientation(orientation);
    giveRoom();
}

void ApplicationsPage::giveRoom() {
    const bool aside = splitter_->orientation() == Qt::Horizontal;
    const int whole = aside ? splitter_->width() : splitter_->height();
    const int part = aside ? detailsWidth : whole / 2;
    splitter_->setSizes({whole - part, part});
}

} // namespace

Page* makeApplicationsPage(PageContext& context) { return new ApplicationsPage(context); }

} // namespace quarn::desktop
