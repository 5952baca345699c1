#pragma once

#include "desktop/Page.h"

#include <QListView>

class QStandardItemModel;

namespace quarn {
struct SidebarLayout;
}

namespace quarn::desktop {

/// The ids of the pages to show in their order: those of the layout first, then the ones it does not name, in
/// their built-in order; without the hidden ones. Never empty.
QStringList sidebarPages(const SidebarLayout& layout);

/// The list of pages. Rows are moved by dragging and hidden with the context menu, which is stored as
/// `sidebarLayout`.
class Sidebar : public QListView {
    Q_OBJECT
public:
    explicit Sidebar(Prefs& prefs, QWidget* parent = nullptr);

    void select(const QString& page);
    /// Follows the stored layout.
    void reload();

Q_SIGNALS:
    void chosen(const QString& page);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

private:
    void storeOrder();
    void store(const SidebarLayout& layout);

    Prefs& prefs_;
    QStandardItemModel* rows_;
    bool loading_ = false;
};

} // namespace quarn::desktop
