#pragma once

#include <QList>
#include <QWidget>

namespace quarn::desktop {

/// Children from left to right, in as many rows as the width needs, each at least `minimum` wide and all of
/// one row equally wide. With `Lead::wide` the first spans more, so that every row is full. Children are
/// owned by this.
class FlowGrid : public QWidget {
    Q_OBJECT
public:
    enum class Lead { asOthers, wide };

    explicit FlowGrid(int minimumWidth, Lead lead = Lead::asOthers, QWidget* parent = nullptr);
    void add(QWidget* child);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    int place(int width, bool apply) const;

    int minimumWidth_;
    Lead lead_;
    QList<QWidget*> children_;
};

} // namespace quarn::desktop
