#include "desktop/Sidebar.h"

#include "desktop/Icon.h"
#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/panels/PanelChoice.h"
#include "ui/settings/Prefs.h"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QMenu>
#include <QStandardItemModel>
#include <algorithm>

namespace quarn::desktop {

namespace {

constexpr int idRole = Qt::UserRole + 1;

const PageEntry* entry(const QString& id) {
    const auto& table = pageTable();
    const auto found =
        std::find_if(table.begin(), table.end(), [&](const PageEntry& e) { return id == e.id; });
    return found == table.end() ? nullptr : &*found;
}

} // namespace

QStringList sidebarPages(const SidebarLayout& layout) {
    QStringList all;
    for (const auto& id : layout.order)
        if (entry(QString::fromStdString(id))) all << QString::fromStdString(id);
    for (const auto& page : pageTable())
        if (!all.contains(page.id)) all << page.id;
    QStringList shown;
    for (const auto& id : all)
        if (!layout.hidden.contains(id.toStdString())) shown << id;
    return shown.isEmpty() ? all : shown;
}

Sidebar::Sidebar(Prefs& prefs, QWidget* parent)
    : QListView(parent), prefs_(prefs), rows_(new QStandardItemModel(this)) {
    setObjectName("sidebar");
    setModel(rows_);
    setAccessibleName(say("Pages"));
    setEditTriggers(NoEditTriggers);
    setDragDropMode(InternalMove);
    setDefaultDropAction(Qt::MoveAction);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setUniformItemSizes(false);
    setSpacing(1);
    setIconSize({18, 18});
    reload();
}

void Sidebar::reload() {
    loading_ = true;
    const QString selected = currentIndex().data(idRole).toString();
    rows_->clear();
    const auto layout = prefs_.sidebarLayout.get();
    QString group;
    for (const auto& id : sidebarPages(layout)) {
        const auto* page = entry(id);
        // Headings only divide the built-in order; one's own order needs none.
        if (layout.order.empty() && group != page->group && *page->group) {
            auto* heading = new QStandardItem(say(page->group));
            heading->setFlags(Qt::NoItemFlags);
            heading->setFont(Theme::captionFont());
            heading->setSizeHint({0, 28});
            heading->setTextAlignment(Qt::AlignLeft | Qt::AlignBottom);
            rows_->appendRow(heading);
        }
        group = page->group;
        auto* row = new QStandardItem(icon(page->icon), say(page->title));
        row->setData(id, idRole);
        row->setSizeHint({0, 30});
        row->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled);
        rows_->appendRow(row);
    }
    loading_ = false;
    if (!selected.isEmpty()) select(selected);
}

void Sidebar::select(const QString& page) {
    for (int i = 0; i < rows_->rowCount(); ++i)
        if (rows_->item(i)->data(idRole).toString() == page) setCurrentIndex(rows_->index(i, 0));
}

void Sidebar::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QListView::currentChanged(current, previous);
    const QString id = current.data(idRole).toString();
    if (!loading_ && !id.isEmpty()) Q_EMIT chosen(id);
}

void Sidebar::dropEvent(QDropEvent* event) {
    QListView::dropEvent(event);
    QMetaObject::invokeMethod(
        this, [this] { storeOrder(); }, Qt::QueuedConnection); // after the row moved
}

void Sidebar::storeOrder() {
    auto layout = prefs_.sidebarLayout.get();
    layout.order.clear();
    for (int i = 0; i < rows_->rowCount(); ++i)
        if (const QString id = rows_->item(i)->data(idRole).toString(); !id.isEmpty())
            layout.order.push_back(id.toStdString());
    store(layout);
}

/// Shows what is stored then, which is the former layout when it could not be stored.
void Sidebar::store(const SidebarLayout& layout) {
    storeSetting([&] { prefs_.sidebarLayout.set(layout); });
    reload();
}

void Sidebar::contextMenuEvent(QContextMenuEvent* event) {
    const QString id = indexAt(event->pos()).data(idRole).toString();
    auto layout = prefs_.sidebarLayout.get();
    QMenu menu;
    if (!id.isEmpty() && sidebarPages(layout).size() > 1)
        menu.addAction(say("Hide this page"), [&] {
            layout.hidden.insert(id.toStdString());
            store(layout);
        });
    if (!layout.hidden.empty()) {
        auto* hidden = menu.addMenu(say("Show"));
        for (const auto& page : pageTable())
            if (layout.hidden.contains(page.id))
                hidden->addAction(say(page.title), [&, shown = std::string(page.id)] {
                    layout.hidden.erase(shown);
                    store(layout);
                });
    }
    if (!layout.order.empty() || !layout.hidden.empty())
        menu.addAction(say("Restore the built-in order"), [&] { store({}); });
    if (!menu.isEmpty()) menu.exec(event->globalPos());
}

} // namespace quarn::desktop
