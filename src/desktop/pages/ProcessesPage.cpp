#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/UiState.h"
#include "desktop/pages/Pages.h"
#include "desktop/processes/ProcessActions.h"
#include "desktop/processes/ProcessDetails.h"
#include "desktop/processes/ProcessModel.h"
#include "desktop/widgets/Notice.h"
#include "desktop/widgets/PageSearch.h"
#include "desktop/widgets/TableView.h"
#include "monitor/Monitor.h"
#include "ui/settings/Prefs.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QShortcut>
#include <QSplitter>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>
#include <unistd.h>

namespace quarn::desktop {

namespace {

using Shape = ProcessView::Shape;

constexpr int roomForDetails = 980; ///< pixels from which they stand at the right

QToolButton* toggle(const QString& text, const QString& tip) {
    auto* button = new QToolButton;
    button->setText(text);
    button->setToolTip(tip);
    button->setCheckable(true);
    return button;
}

class ProcessesPage final : public Page {
public:
    explicit ProcessesPage(PageContext& context)
        : Page(context, say("Processes")),
          tree_(toggle(say("Tree"), say("Each process under the one that started it (Ctrl+T)"))),
          own_(toggle(say("Mine"), say("Only your own processes"))),
          notice_(new Notice),
          view_(new TableView("processes")),
          search_(new PageSearch(*this, *view_, say("Search processes"),
                                 say("Name, path, user or PID; all words must occur"))),
          details_(new ProcessDetails(context.monitor)),
          splitter_(new QSplitter),
          actions_(new ProcessActions(context.monitor, this)) {
        contentFills();
        makeTools();
        splitter_->addWidget(view_);
        splitter_->addWidget(details_);
        splitter_->setStretchFactor(0, 1);
        splitter_->setChildrenCollapsible(false);
        splitter_->setHandleWidth(Theme::gap);
        details_->hide();
        content().addWidget(notice_);
        content().addWidget(splitter_, 1);

        view_->setAccessibleName(say("Processes"));
        view_->setContextMenuPolicy(Qt::CustomContextMenu);
        view_->show(model_, static_cast<int>(ProcessField::cpu), Qt::DescendingOrder);
        const bool asTree = UiState::text("processes/shape") == "tree";
        tree_->setChecked(asTree);
        connectAll();
    }

    void refresh(const Snapshot& snapshot, const Known& known) override {
        const Prefs& prefs = context_.prefs;
        using Changes = ProcessRows::Marks::Changes;
        const ProcessRows::Marks marks{prefs.showExited.get() ? static_cast<double>(prefs.keepExited.get())
                                                              : 0,
                                       prefs.flashChanges.get() ? Changes::mark : Changes::ignore};
        model_.take(snapshot, known, marks, steadySeconds());
        processes_ = snapshot.processes.size();
        sentence_ = toQt(processSentence(snapshot, known));
        tell();
        view_->setEmptyText(snapshot.processes.empty()
                                ? say("No process can be read.")
                                : say("No process matches. Clear the search (Esc) to see all."));
        showDetails();
    }

    void search(const QString& text) override {
        search_->setText(text);
        view_->setFocus();
    }

protected:
    void hideEvent(QHideEvent* event) override {
        Page::hideEvent(event);
        model_.pause();
    }

    void resizeEvent(QResizeEvent* event) override {
        Page::resizeEvent(event);
        const auto orientation = width() >= roomForDetails ? Qt::Horizontal : Qt::Vertical;
        if (splitter_->orientation() == orientation) return;
        splitter_->setOrientation(orientation);
        giveRoom();
    }

private:
    void makeTools() {
        addTool(own_);
        addTool(tree_);
        addTool(search_);
    }

    void connectAll() {
        connect(search_, &QLineEdit::textChanged, this, [this](const QString& text) {
            model_.setSearch(text);
            if (tree_->isChecked()) view_->expandAll();
            tell();
        });
        connect(tree_, &QToolButton::toggled, this, [this] { applyShape(); });
        connect(own_, &QToolButton::toggled, this, [this](bool only) {
            model_.setUser(only ? std::optional<int64_t>(::getuid()) : std::nullopt);
            if (tree_->isChecked()) view_->expandAll();
            tell();
        });
        // What comes under a row that had nothing below it is shown.
        connect(&model_, &QAbstractItemModel::rowsInserted, this,
                [this](const QModelIndex& parent, int first, int last) {
                    if (parent.isValid() && model_.rowCount(parent) == last - first + 1)
                        view_->expand(parent);
                });
        connect(view_, &QWidget::customContextMenuRequested, this,
                [this](const QPoint& at) { showMenu(at); });
        connect(view_, &QAbstractItemView::doubleClicked, this, [this] { openDetails(); });
        connect(view_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
                [this] { showDetails(); });
        connect(details_, &ProcessDetails::closed, this, [this] { closeDetails(); });
        connect(actions_, &ProcessActions::failed, notice_, &Notice::tell);

        const auto shortcut = [this](const QKeySequence& keys, QWidget* within, auto work) {
            connect(new QShortcut(keys, within, nullptr, nullptr, Qt::WidgetWithChildrenShortcut),
                    &QShortcut::activated, this, work);
        };
        shortcut(Qt::CTRL | Qt::Key_T, this, [this] { tree_->toggle(); });
        shortcut(Qt::Key_Escape, view_, [this] { closeDetails(); });
        shortcut(Qt::Key_Return, view_, [this] { openDetails(); });
        shortcut(Qt::Key_Enter, view_, [this] { openDetails(); });
        shortcut(QKeySequence::Delete, view_,
                 [this] { actions_->run(askToQuit(), chosen(), ProcessActions::Ask::always); });
        shortcut(Qt::SHIFT | Qt::Key_Delete, view_,
                 [this] { actions_->run(forceToQuit(), chosen(), ProcessActions::Ask::always); });
        applyShape();
    }

    void applyShape() {
        const bool asTree = tree_->isChecked();
        UiState::setText("processes/shape", asTree ? "tree" : "list");
        view_->setShape(asTree ? TableView::Shape::tree : TableView::Shape::list);
        model_.setShape(asTree ? Shape::tree : Shape::list);
        if (asTree) view_->expandAll();
        if (view_->currentIndex().isValid()) view_->scrollTo(view_->currentIndex());
    }

    void tell() {
        const bool isFiltered = !search_->text().trimmed().isEmpty() || own_->isChecked();
        setSentence(isFiltered ? say("%1 of %2 processes shown").arg(model_.rows().matching()).arg(processes_)
                               : sentence_);
    }

    /// The selected processes that still run.
    std::vector<ProcInfo> chosen() const {
        std::vector<ProcInfo> processes;
        for (const QModelIndex& index : view_->selectedRows())
            if (const ProcessRow& row = model_.row(index); row.life != ProcessRow::Life::exited)
                processes.push_back(*row.process);
        return processes;
    }

    void showMenu(const QPoint& at) {
        const auto processes = chosen();
        if (processes.empty()) return;
        QMenu menu;
        QAction* details = menu.addAction(say("Details"), this, [this] { openDetails(); });
        details->setShortcut(Qt::Key_Return);
        QAction* copy = menu.addAction(say("Copy"), view_, &TableView::copySelection);
        copy->setShortcut(QKeySequence::Copy);
        menu.addSeparator();
        actions_->fill(menu, processes);
        menu.exec(view_->viewport()->mapToGlobal(at));
    }

    void openDetails() {
        if (!view_->currentIndex().isValid()) return;
        const bool wasHidden = details_->isHidden();
        details_->setVisible(true);
        if (wasHidden) giveRoom();
        showDetails();
        // Once the table has got its new size.
        QTimer::singleShot(0, view_, [this] { view_->scrollTo(view_->currentIndex()); });
    }

    void closeDetails() {
        details_->hide();
        view_->setFocus();
    }

    void giveRoom() {
        const bool aside = splitter_->orientation() == Qt::Horizontal;
        const int whole = aside ? splitter_->width() : splitter_->height();
        const int part = aside ? 320 : whole * 45 / 100;
        splitter_->setSizes({whole - part, part});
    }

    void showDetails() {
        const QModelIndex current = view_->currentIndex();
        if (!details_->isHidden() && current.isValid())
            details_->show(model_.row(current), model_.rows(), model_.now());
    }

    QToolButton* tree_;
    QToolButton* own_;
    Notice* notice_;
    ProcessModel model_;
    TableView* view_;
    PageSearch* search_;
    ProcessDetails* details_;
    QSplitter* splitter_;
    ProcessActions* actions_;
    QString sentence_; ///< on all processes
    size_t processes_ = 0;
};

} // namespace

Page* makeProcessesPage(PageContext& context) { return new ProcessesPage(context); }

} // namespace quarn::desktop
