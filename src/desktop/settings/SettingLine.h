#pragma once

#include "desktop/settings/SettingEditor.h"

#include <functional>

class QLabel;
class QPushButton;

namespace quarn::desktop {

/// One setting on its page: label, explanation, editor, and a way back to the default while it is changed.
class SettingLine : public QWidget {
    Q_OBJECT
public:
    SettingLine(const SettingRow& row, AnySetting& setting, QWidget* parent = nullptr);

    const SettingRow& row() const { return row_; }
    /// Shows what is stored now.
    void load();
    bool isChanged() const;

Q_SIGNALS:
    /// Something could not be stored; the sentence says what, and what is still safe. The line shows the
    /// stored value again.
    void failed(const QString& sentence);
    /// Something was stored.
    void stored();

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void change(const std::function<void()>& change);

    const SettingRow& row_;
    AnySetting& setting_;
    SettingEditor* editor_;
    QPushButton* restore_;
};

} // namespace quarn::desktop
