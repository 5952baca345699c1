#pragma once

#include <QStringList>
#include <QWidget>

class QButtonGroup;

namespace quarn::desktop {

/// A few alternatives side by side of which one holds; the arrow keys go through them.
class SegmentedChoice : public QWidget {
    Q_OBJECT
public:
    SegmentedChoice(const QStringList& texts, const QString& accessibleName, QWidget* parent = nullptr);

    int current() const;
    /// Shows another as chosen, without a signal. −1: none of them.
    void setCurrent(int index);

Q_SIGNALS:
    /// A person chose this one.
    void chosen(int index);

private:
    QButtonGroup* buttons_;
};

} // namespace quarn::desktop
