#pragma once

#include "desktop/widgets/Card.h"
#include "history/HistoryReads.h"
#include "ui/modules/AppRows.h"

class QBoxLayout;

namespace quarn::desktop {

class ElidedLabel;
class FactTable;
class HistoryChart;
class RankList;
class SegmentedChoice;

/// The applications that used most of something over a span, and the chosen one's own past beside them, or
/// below where there is no room.
class AppRanking : public Card {
    Q_OBJECT
public:
    explicit AppRanking(QWidget* parent = nullptr);

    AppHistoryMetric metric() const;
    const std::string& app() const { return app_; } ///< the chosen one's key; empty for none
    void choose(const std::string& app);

    /// `answer` is to a question with this metric and application.
    void show(const HistoryAnswer& answer, const AppStyle& style);

Q_SIGNALS:
    /// The metric or the application is another one now.
    void changed();
    void processesWanted(const QString& name);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void makeDetails();
    void close();
    void chooseFirst();
    bool isWide() const;
    void showRanking(const HistoryAnswer& answer);
    void showDetails(const HistoryAnswer& answer, const AppStyle& style);

    SegmentedChoice* metric_;
    QWidget* details_; ///< of the chosen application
    RankList* list_;
    QLabel* others_;
    QLabel* name_;
    ElidedLabel* amount_;
    QBoxLayout* halves_;
    QVBoxLayout* charts_;
    HistoryChart* chart_ = nullptr; ///< made anew with the metric
    FactTable* facts_;
    std::string app_;
    std::string first_; ///< of the list
    /// Where there is room the first of the list is chosen, until a person chooses another or none.
    enum class Choice { first, own } choice_ = Choice::first;
    std::optional<AppHistoryMetric> charted_; ///< what `chart_` is for
};

} // namespace quarn::desktop
