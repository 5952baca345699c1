#pragma once

#include "ui/modules/SettingRows.h"

#include <QWidget>

namespace quarn {
class AnySetting;
}

namespace quarn::desktop {

/// What a person changes one setting with. It knows nothing of the store: it shows the value that it is
/// given, and tells what the person made of it.
class SettingEditor : public QWidget {
    Q_OBJECT
public:
    using QWidget::QWidget;

    /// Shows a value as the setting answers it; `edited` is not emitted.
    virtual void setValue(const SettingValue& value) = 0;

Q_SIGNALS:
    void edited(const quarn::SettingValue& value);

protected:
    /// Makes `control` the whole of the editor. A wheel turned over it scrolls the page, and changes its
    /// value only once it has the focus.
    void adopt(QWidget* control);
    bool eventFilter(QObject* watched, QEvent* event) override;
};

/// The editor for a row; its object name is the key.
SettingEditor* makeSettingEditor(const SettingRow& row, const AnySetting& setting, QWidget* parent = nullptr);

} // namespace quarn::desktop
