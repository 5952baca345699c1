#include "desktop/UiState.h"

#include "ui/settings/Prefs.h"

#include <QSettings>

namespace quarn::desktop {

namespace {

QSettings& file() {
    const auto folder = Prefs::shared().d.file().parent_path();
    static QSettings settings(QString::fromStdString((folder / "desktop.ini").string()),
                              QSettings::IniFormat);
    return settings;
}

} // namespace

QByteArray UiState::bytes(const QString& key) { return file().value(key).toByteArray(); }
void UiState::setBytes(const QString& key, const QByteArray& value) { file().setValue(key, value); }
QString UiState::text(const QString& key) { return file().value(key).toString(); }
void UiState::setText(const QString& key, const QString& value) { file().setValue(key, value); }

std::optional<QRect> UiState::frame(const QString& key) {
    const QRect frame = file().value(key).toRect();
    return frame.isValid() ? std::optional(frame) : std::nullopt;
}

void UiState::setFrame(const QString& key, const QRect& frame) { file().setValue(key, frame); }

} // namespace quarn::desktop
