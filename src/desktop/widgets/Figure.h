#pragma once

#include <QWidget>

namespace quarn::desktop {

/// The one big figure of a card or tile: "37 %", "1.20 MB/s", with the unit smaller and dim.
class Figure : public QWidget {
    Q_OBJECT
public:
    explicit Figure(QWidget* parent = nullptr);
    void setText(const QString& text);
    const QString& text() const { return text_; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {20, sizeHint().height()}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString text_ = "—";
};

} // namespace quarn::desktop
