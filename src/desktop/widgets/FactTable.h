#pragma once

#include "ui/modules/Facts.h"

#include <QString>
#include <QWidget>
#include <vector>

class QGridLayout;
class QLabel;

namespace quarn::desktop {

/// Labels with their values, two columns; rows are made once and then only their values change.
class FactTable : public QWidget {
    Q_OBJECT
public:
    struct Fact {
        QString label;
        QString value;   ///< "—" for what is unknown
        QString tooltip; ///< why it is unknown, what would open it, or more of it
    };

    explicit FactTable(QWidget* parent = nullptr);
    /// Shows these; only what changed is touched.
    void show(const std::vector<Fact>& facts);
    /// The same of facts of the engine: what is unknown has its reason as tooltip.
    void show(const std::vector<quarn::Fact>& facts);

private:
    struct Row {
        QLabel* label;
        QLabel* value;
    };
    QGridLayout* grid_;
    std::vector<Row> rows_;
};

} // namespace quarn::desktop
