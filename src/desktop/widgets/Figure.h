#pragma once

#include <QVariantAnimation>
#include <QWidget>

namespace quarn::desktop {

/// The one big figure of a card or tile: "37 %", "1.20 MB/s", with the unit smaller and dim.
class Figure : public QWidget {
    Q_OBJECT
public:
    explicit Figure(QWidget* parent = nullptr);
    void setText(const QString& text);
    /// Whether a text blends into the next one.
    void setCrossfades(bool crossfades) { crossfades_ = crossfades; }
    const QString& text() const { return text_; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {20, sizeHint().height()}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void paintText(QPainter& painter, const QString& text) const;

    QString text_ = "—";
    QString former_; ///< while the text takes its place
    bool crossfades_ = false;
    QVariantAnimation fading_;
};

} // namespace quarn::desktop
