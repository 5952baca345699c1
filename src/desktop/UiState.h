#pragma once

#include <QByteArray>
#include <QRect>
#include <QString>
#include <optional>

namespace quarn::desktop {

/// Where windows, columns and panels were left, in `desktop.ini` beside the settings. Loss of it is harmless:
/// what cannot be read is as if it had never been stored.
class UiState {
public:
    static QByteArray bytes(const QString& key);
    static void setBytes(const QString& key, const QByteArray& value);
    static QString text(const QString& key);
    static void setText(const QString& key, const QString& value);
    static std::optional<QRect> frame(const QString& key);
    static void setFrame(const QString& key, const QRect& frame);
};

} // namespace quarn::desktop
