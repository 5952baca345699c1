#pragma once

#include <QFrame>

class QLabel;

namespace quarn::desktop {

/// One sentence on something that went wrong, above what it concerns, until it is dismissed. Hidden without
/// one.
class Notice : public QFrame {
    Q_OBJECT
public:
    explicit Notice(QWidget* parent = nullptr);
    /// Plain text; empty hides the notice.
    void tell(const QString& sentence);
    QString sentence() const;

private:
    QLabel* text_;
};

} // namespace quarn::desktop
