#pragma once

#include <QLocalServer>
#include <QObject>

namespace quarn::desktop {

/// Keeps the application to one instance for each user and display.
class SingleInstance : public QObject {
    Q_OBJECT
public:
    explicit SingleInstance(const QString& name);

    /// Whether this is the first; otherwise the first was asked to show itself.
    bool isFirst() const { return first_; }

Q_SIGNALS:
    /// Another start asked for the window.
    void raised();

private:
    QLocalServer server_;
    bool first_ = false;
};

} // namespace quarn::desktop
