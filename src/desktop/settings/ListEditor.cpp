#include "desktop/settings/ListEditor.h"

#include "desktop/Icon.h"
#include "desktop/Page.h"
#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "ui/modules/WidgetKind.h"
#include "ui/settings/Pref.h"

#include <QDropEvent>
#include <QKeyEvent>
#include <QSignalBlocker>

namespace quarn::desktop {

namespace {

constexpr int idRole = Qt::UserRole + 1;

std::vector<std::string_view> idsOf(ListEditor::Content content) {
    if (content != ListEditor::Content::pages) return {moduleTexts.begin(), moduleTexts.end()};
    std::vector<std::string_view> ids;
    for (const auto& page : pageTable()) ids.emplace_back(page.id);
    return ids;
}

QListWidgetItem* makeItem(const std::string& id, ListEditor::Content content) {
    auto* item = new QListWidgetItem;
    item->setData(idRole, QString::fromStdString(id));
    item->setText(toQt(id));
    const auto kind = widgetKindFromId(id);
    if (content != ListEditor::Content::pages && kind) item->setText(say(Reading::title(*kind)));
    for (const auto& page : pageTable()) {
        if (content != ListEditor::Content::pages || id != page.id) continue;
        item->setText(say(page.title));
        item->setIcon(icon(page.icon));
    }
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable;
    if (content != ListEditor::Content::modules) flags |= Qt::ItemIsDragEnabled;
    item->setFlags(flags);
    item->setSizeHint({0, Theme::rowHeight});
    return item;
}

} // namespace

OrderList::OrderList(Order order, QWidget* parent) : QListWidget(parent), order_(order) {
    setIconSize({16, 16});
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    if (order == Order::free) {
        setDragDropMode(InternalMove);
        setDefaultDropAction(Qt::MoveAction);
    }
}

QSize OrderList::sizeHint() const { return {160, count() * Theme::rowHeight + 2 * frameWidth() + 4}; }

void OrderList::keyPressEvent(QKeyEvent* event) {
    const int by = event->key() == Qt::Key_Up ? -1 : event->key() == Qt::Key_Down ? 1 : 0;
    const int to = currentRow() + by;
    if (order_ == Order::fixed || by == 0 || !(event->modifiers() & Qt::ControlModifier) ||
        currentRow() < 0) {
        QListWidget::keyPressEvent(event);
        return;
    }
    if (to < 0 || to >= count()) return;
    insertItem(to, takeItem(currentRow()));
    setCurrentRow(to);
    Q_EMIT moved();
}

void OrderList::dropEvent(QDropEvent* event) {
    QListWidget::dropEvent(event);
    QMetaObject::invokeMethod(this, &OrderList::moved, Qt::QueuedConnection); // after the row moved
}

ListEditor::ListEditor(Content content, QWidget* parent)
    : SettingEditor(parent),
      content_(content),
      all_(idsOf(content)),
      list_(new OrderList(content == Content::modules ? OrderList::Order::fixed : OrderList::Order::free)) {
    adopt(list_);
    connect(list_, &QListWidget::itemChanged, this, [this] { changed(); });
    connect(list_, &OrderList::moved, this, [this] { changed(); });
}

void ListEditor::setValue(const SettingValue& value) {
    std::vector<ListedItem> items;
    if (content_ == Content::pages) {
        const auto layout = PrefStorable<SidebarLayout>::fromStored(value);
        items = listedItems(all_, layout.value_or(SidebarLayout()));
    } else {
        const auto* stored = std::get_if<std::vector<std::string>>(&value);
        const auto chosen = stored ? *stored : std::vector<std::string>();
        items = listedItems(all_, chosen);
        if (content_ == Content::modules) { // chosen ones stay where they are
            items = listedItems(all_, std::vector<std::string>());
            for (auto& item : items)
                item.chosen = std::find(chosen.begin(), chosen.end(), item.id) != chosen.end();
        }
    }
    if (items == shown()) return;
    const QSignalBlocker quiet(list_);
    const auto sameOrder = [&](const std::vector<ListedItem>& other) {
        return std::equal(items.begin(), items.end(), other.begin(), other.end(),
                          [](const ListedItem& a, const ListedItem& b) { return a.id == b.id; });
    };
    // In place where possible: this may be called while an item tells of its change.
    if (!sameOrder(shown())) {
        const int row = list_->currentRow();
        list_->clear();
        for (const auto& item : items) list_->addItem(makeItem(item.id, content_));
        list_->setCurrentRow(row);
        list_->updateGeometry();
    }
    for (size_t i = 0; i < items.size(); ++i)
        list_->item(static_cast<int>(i))->setCheckState(items[i].chosen ? Qt::Checked : Qt::Unchecked);
    list_->viewport()->update();
}

std::vector<ListedItem> ListEditor::shown() const {
    std::vector<ListedItem> items;
    items.reserve(static_cast<size_t>(list_->count()));
    for (int i = 0; i < list_->count(); ++i)
        items.push_back({list_->item(i)->data(idRole).toString().toStdString(),
                         list_->item(i)->checkState() == Qt::Checked});
    return items;
}

void ListEditor::changed() {
    const auto items = shown();
    if (content_ != Content::pages) {
        Q_EMIT edited(chosenItems(items));
        return;
    }
    if (chosenItems(items).empty()) { // a sidebar without pages would lead nowhere
        const QSignalBlocker quiet(list_);
        const int row = std::max(list_->currentRow(), 0);
        list_->item(row)->setCheckState(Qt::Checked);
        return;
    }
    Q_EMIT edited(PrefStorable<SidebarLayout>::toStored(layoutOf(items, all_)));
}

} // namespace quarn::desktop
