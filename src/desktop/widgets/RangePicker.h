#pragma once

#include <QComboBox>

namespace quarn {
class Prefs;
}

namespace quarn::desktop {

/// Chooses the span of all live graphs, which is stored as `historyRange`.
class RangePicker : public QComboBox {
    Q_OBJECT
public:
    explicit RangePicker(Prefs& prefs, QWidget* parent = nullptr);
    /// Shows what is stored, and answers it in seconds. Cheap enough for every tick.
    double follow();

private:
    Prefs& prefs_;
};

} // namespace quarn::desktop
