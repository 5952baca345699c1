#pragma once

#include <QLabel>

namespace quarn::desktop {

/// A line of plain text that takes the width it is given: what does not fit ends in "…" and is told in full
/// by the tooltip.
class ElidedLabel : public QLabel {
    Q_OBJECT
public:
    explicit ElidedLabel(const QString& text = {}, QWidget* parent = nullptr);
    /// Shows `text`; `tooltip` stands in for it where there is more to say. Only what differs is touched.
    void show(const QString& text, const QString& tooltip = {});

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace quarn::desktop
