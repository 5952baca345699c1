#pragma once

#include "desktop/widgets/Card.h"
#include "history/MetricsStoreKeeper.h"

class QPushButton;

namespace quarn::desktop {

struct PageContext;
class SettingLine;
class WrappedText;

/// Whether the long-term history is recorded, where and for how long, and the way to delete it.
class HistoryKeeping : public Card {
    Q_OBJECT
public:
    explicit HistoryKeeping(PageContext& context, QWidget* parent = nullptr);

    /// How recording is going now. Cheap enough for every tick.
    void show(const HistoryStatus& status);

Q_SIGNALS:
    void failed(const QString& sentence);
    void cleared();

private:
    void askToClear();
    void clear();

    PageContext& context_;
    SettingLine* wanted_;
    QLabel* state_;
    QPushButton* clear_;
};

} // namespace quarn::desktop
