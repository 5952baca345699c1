#pragma once

#include "ui/modules/Attention.h"

#include <QWidget>
#include <vector>

class QLabel;

namespace quarn::desktop {

class AttentionRow;

/// What needs attention, each with the icon and hue of its level, or quietly that nothing does. A click,
/// Space or Return opens the page that shows more.
class AttentionList : public QWidget {
    Q_OBJECT
public:
    explicit AttentionList(QWidget* parent = nullptr);
    /// `watched` says what is looked for, for when there is nothing.
    void show(const std::vector<AttentionItem>& items, const QString& watched);

Q_SIGNALS:
    void opened(const QString& page, const QString& search);

private:
    QLabel* nothing_;
    QLabel* watched_;
    std::vector<AttentionRow*> rows_;
};

} // namespace quarn::desktop
