#include "HelperKit/SerialQueue.h"
#include "desktop/Background.h"
#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/UiState.h"
#include "desktop/connections/ConnectionModel.h"
#include "desktop/connections/ConnectionSource.h"
#include "desktop/pages/Pages.h"
#include "desktop/widgets/PageSearch.h"
#include "desktop/widgets/TableView.h"
#include "monitor/Monitor.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QMenu>
#include <QShortcut>
#include <QTimer>

namespace quarn::desktop {

namespace {

using Grouping = ConnectionView::Grouping;
using Read = ConnectionSource::Read;

constexpr int cadence = 2000; ///< ms between two readings

struct Choice {
    const char* id; ///< as it is stored
    const char* text;
    int value;
};
constexpr Choice groupings[]{{"process", "By process", static_cast<int>(Grouping::process)},
                             {"destination", "By destination", static_cast<int>(Grouping::destination)},
                             {"none", "Not grouped", static_cast<int>(Grouping::none)}};
constexpr Choice scopes[]{{"all", "All sockets", static_cast<int>(ConnectionScope::all)},
                          {"internet", "To the internet", static_cast<int>(ConnectionScope::internet)},
                          {"local", "Local network", static_cast<int>(ConnectionScope::localNetwork)},
                          {"listening", "Listening", static_cast<int>(ConnectionScope::listening)}};
constexpr Choice protocols[]{{"all", "TCP and UDP", static_cast<int>(ConnectionProtocol::all)},
                             {"tcp", "TCP", static_cast<int>(ConnectionProtocol::tcp)},
                             {"udp", "UDP", static_cast<int>(ConnectionProtocol::udp)}};

class ConnectionsPage final : public Page {
public:
    explicit ConnectionsPage(PageContext& context)
        : Page(context, say("Connections")),
          timer_(new QTimer(this)),
          table_(new TableView("connections", TableView::Shape::tree)),
          search_(new PageSearch(*this, *table_, say("Search connections"),
                                 say("Name, address, port, state or PID"))),
          source_(std::make_shared<ConnectionSource>(context.monitor.root())),
          queue_("com.kelmora.quarn.sockets") {
        contentFills();
        makeTools();
        content().addWidget(table_, 1);
        table_->setAccessibleName(say("Connections"));
        table_->setContextMenuPolicy(Qt::CustomContextMenu);
        table_->setEmptyText(say("Reading the sockets …"));
        setSentence(say("Reading the sockets …"));
        connect(&model_, &ConnectionModel::sortWanted, this,
                [this](ConnectionKey key, ConnectionView::Direction direction) {
                    view_.sortedBy = key;
                    view_.direction = direction;
                    ask(Read::last);
                });
        connect(&model_, &QAbstractItemModel::rowsInserted, this,
                [this](const QModelIndex& parent, int first, int last) {
                    if (parent.isValid() && model_.rowCount(parent) == last - first + 1)
                        table_->expand(parent);
                });
        connect(table_, &QWidget::customContextMenuRequested, this,
                [this](const QPoint& at) { showMenu(at); });
        connect(table_, &QAbstractItemView::doubleClicked, this, [this] { showProcess(); });
        table_->show(model_, static_cast<int>(ConnectionKey::process), Qt::AscendingOrder);
        applyGrouping();
        addKeys();
        timer_->setInterval(cadence);
        connect(timer_, &QTimer::timeout, this, [this] { ask(Read::anew); });
    }

    void refresh(const Snapshot& snapshot, const Known&) override { processes_ = snapshot.processes; }

    void search(const QString& text) override {
        search_->setText(text);
        table_->setFocus();
    }

protected:
    void showEvent(QShowEvent* event) override {
        Page::showEvent(event);
        timer_->start();
        ask(Read::anew);
    }
    void hideEvent(QHideEvent* event) override {
        Page::hideEvent(event);
        timer_->stop();
    }

private:
    template <size_t count, class Apply>
    QComboBox* choice(const Choice (&choices)[count], const char* name, const QString& key, Apply apply) {
        auto* box = new QComboBox;
        box->setAccessibleName(say(name));
        box->setToolTip(say(name));
        const QString stored = UiState::text(key);
        for (const Choice& each : choices) {
            box->addItem(say(each.text), each.value);
            if (stored == each.id) box->setCurrentIndex(box->count() - 1);
        }
        apply(box->currentData().toInt());
        connect(box, &QComboBox::currentIndexChanged, this, [this, &choices, key, apply](int index) {
            UiState::setText(key, choices[static_cast<size_t>(index)].id);
            apply(choices[static_cast<size_t>(index)].value);
            ask(Read::last);
        });
        return box;
    }

    void makeTools() {
        auto* row = new QHBoxLayout;
        row->setSpacing(Theme::gap);
        row->addWidget(choice(scopes, "Where the other end is", "connections/scope",
                              [this](int value) { view_.scope = static_cast<ConnectionScope>(value); }));
        row->addWidget(choice(protocols, "Protocol", "connections/protocol", [this](int value) {
            view_.protocol = static_cast<ConnectionProtocol>(value);
        }));
        row->addWidget(choice(groupings, "Grouping", "connections/grouping", [this](int value) {
            view_.grouping = static_cast<Grouping>(value);
            applyGrouping();
        }));
        row->addStretch(1);
        content().addLayout(row);

        addTool(search_);
        connect(search_, &QLineEdit::textChanged, this, [this](const QString& text) {
            view_.search = text.trimmed().toStdString();
            opensAll_ = true; // what is found is seen
            ask(Read::last);
        });
    }

    void addKeys() {
        const auto shortcut = [this](const QKeySequence& keys, QWidget* within, auto work) {
            connect(new QShortcut(keys, within, nullptr, nullptr, Qt::WidgetWithChildrenShortcut),
                    &QShortcut::activated, this, work);
        };
        shortcut(Qt::Key_Return, table_, [this] { showProcess(); });
        shortcut(Qt::Key_Enter, table_, [this] { showProcess(); });
    }

    /// What the rows are grouped by stands at the left and carries the branches.
    void applyGrouping() {
        if (!table_->model()) return;
        const bool isTree = view_.grouping != Grouping::none;
        const auto key =
            view_.grouping == Grouping::destination ? ConnectionKey::remote : ConnectionKey::process;
        table_->setShape(isTree ? TableView::Shape::tree : TableView::Shape::list);
        table_->setLeadingColumn(static_cast<int>(key));
        model_.setLead(key);
        opensAll_ = true;
    }

    /// Has the rows made on the queue. While it works, of all that is asked only the last is kept.
    void ask(Read read) {
        if (isBusy_) {
            if (!next_ || read == Read::anew) next_ = read;
            return;
        }
        isBusy_ = true;
        inBackground(
            queue_, this,
            [source = source_, view = view_, read, processes = processes_] {
                return source->rows(view, read, processes);
            },
            [this](std::optional<ConnectionRows> rows) {
                isBusy_ = false;
                land(std::move(rows));
                if (const auto next = std::exchange(next_, std::nullopt)) ask(*next);
            });
    }

    void land(std::optional<ConnectionRows> rows) {
        if (!rows) {
            setSentence(say("There is no table of sockets to read."));
            table_->setEmptyText(
                say("The kernel tells of no TCP or UDP sockets here. On a captured machine the "
                    "files of its sockets are missing."));
            model_.show({});
            return;
        }
        setSentence(toQt(rows->sentence()));
        table_->setEmptyText(rows->sockets == 0
                                 ? say("No socket is open.")
                                 : say("No socket is of this kind. Clear the search or choose all "
                                       "sockets."));
        model_.show(std::move(*rows));
        if (std::exchange(opensAll_, false)) table_->expandAll();
    }

    void showProcess() {
        const QModelIndex current = table_->currentIndex();
        if (!current.isValid()) return;
        if (const int64_t pid = model_.row(current).shown.pid; pid >= 0)
            context_.navigator.open("processes", QString::number(pid));
    }

    void showMenu(const QPoint& at) {
        if (!table_->currentIndex().isValid()) return;
        QMenu menu;
        QAction* process = menu.addAction(say("Show the process"), this, [this] { showProcess(); });
        process->setEnabled(model_.row(table_->currentIndex()).shown.pid >= 0);
        process->setShortcut(Qt::Key_Return);
        QAction* copy = menu.addAction(say("Copy"), table_, &TableView::copySelection);
        copy->setShortcut(QKeySequence::Copy);
        if (view_.grouping != Grouping::none) {
            menu.addSeparator();
            menu.addAction(say("Open all groups"), table_, &QTreeView::expandAll);
            menu.addAction(say("Close all groups"), table_, &QTreeView::collapseAll);
        }
        menu.exec(table_->viewport()->mapToGlobal(at));
    }

    QTimer* timer_;
    ConnectionModel model_;
    TableView* table_;
    PageSearch* search_;
    ConnectionView view_;
    SharedList<ProcInfo> processes_; ///< for their names
    bool isBusy_ = false;
    bool opensAll_ = true; ///< once the next rows are there
    std::optional<Read> next_;
    std::shared_ptr<ConnectionSource> source_; ///< belongs to the queue
    SerialQueue queue_;
};

} // namespace

Page* makeConnectionsPage(PageContext& context) { return new ConnectionsPage(context); }

} // namespace quarn::desktop
