#include "desktop/SingleInstance.h"

#include <QLocalSocket>

namespace quarn::desktop {

SingleInstance::SingleInstance(const QString& name) {
    QLocalSocket other;
    other.connectToServer(name);
    if (other.waitForConnected(500)) return; // the connection alone asks for the window
    QLocalServer::removeServer(name);        // what a crash left behind
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    first_ = true; // also where no socket can be made: better twice than not at all
    connect(&server_, &QLocalServer::newConnection, this, [this] {
        while (auto* visitor = server_.nextPendingConnection()) visitor->deleteLater();
        Q_EMIT raised();
    });
    server_.listen(name);
}

} // namespace quarn::desktop
