#pragma once

#include <QFrame>
#include <QString>

class QHBoxLayout;
class QLabel;
class QVBoxLayout;

namespace quarn::desktop {

/// A titled surface. Without a title only its frame shows.
class Card : public QFrame {
    Q_OBJECT
public:
    explicit Card(const QString& title = {}, QWidget* parent = nullptr);

    QVBoxLayout& content() { return *content_; }
    void setTitle(const QString& title);
    /// Dim text at the right of the title.
    void setNote(const QString& note);
    /// A button at the right end of the title.
    void addCorner(QWidget* widget);

private:
    QLabel* title_;
    QLabel* note_;
    QHBoxLayout* top_;
    QVBoxLayout* content_;
};

} // namespace quarn::desktop
