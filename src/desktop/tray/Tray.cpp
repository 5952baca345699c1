#include "desktop/tray/Tray.h"

#include "desktop/panels/Placement.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QSystemTrayIcon>

namespace quarn::desktop {

namespace {

bool busHasTray() {
    constexpr int patienceMs = 200;
    auto question = QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                   "org.freedesktop.DBus", "NameHasOwner");
    question << "org.kde.StatusNotifierWatcher";
    const auto answer = QDBusConnection::sessionBus().call(question, QDBus::Block, patienceMs);
    return answer.type() == QDBusMessage::ReplyMessage && answer.arguments().value(0).toBool();
}

} // namespace

bool trayIsThere() {
    // Qt asks the bus once in the life of a program and remembers a no for ever. Under X11 a tray that comes
    // later is found through the display; under Wayland there is only the bus, so Qt may not ask too early.
    if (isWayland() && !busHasTray()) return false;
    return QSystemTrayIcon::isSystemTrayAvailable();
}

} // namespace quarn::desktop
