#pragma once

#include <QWidget>
#include <vector>

namespace quarn::desktop {

/// A bar for each logical CPU, the kernel's part lighter: with number and figure while there is room, as a
/// compact grid of columns for hundreds. Hovering tells the figures of one.
class CoreBars : public QWidget {
    Q_OBJECT
public:
    explicit CoreBars(QWidget* parent = nullptr);
    /// `busy` in percent of each CPU, `system` the kernel's part of it.
    void show(const std::vector<double>& busy, const std::vector<double>& system);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    QString describe(size_t core) const;
    void fit(); ///< takes the height that the width needs

    std::vector<double> busy_;
    std::vector<double> system_;
};

} // namespace quarn::desktop
