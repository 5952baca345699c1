#pragma once

#include "desktop/settings/SettingEditor.h"

#include <QListWidget>

namespace quarn::desktop {

/// A list that shows all its rows. They are checked with Space and, where the order matters, moved by
/// dragging or with Ctrl+Up and Ctrl+Down.
class OrderList final : public QListWidget {
    Q_OBJECT
public:
    enum class Order { fixed, free };
    explicit OrderList(Order order, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
    void moved();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    Order order_;
};

/// Chooses and orders modules or pages.
class ListEditor final : public SettingEditor {
    Q_OBJECT
public:
    enum class Content { modules, orderedModules, pages };
    explicit ListEditor(Content content, QWidget* parent = nullptr);

    void setValue(const SettingValue& value) override;

private:
    std::vector<ListedItem> shown() const;
    void changed();

    Content content_;
    std::vector<std::string_view> all_;
    OrderList* list_;
};

} // namespace quarn::desktop
