#pragma once

#include "HelperKit/SerialQueue.h"
#include "desktop/history/HistoryAsker.h"
#include "desktop/widgets/Card.h"
#include "ui/modules/AppRows.h"
#include "ui/modules/HistorySeries.h"

class QBoxLayout;

namespace quarn::desktop {

struct PageContext;
class FactTable;
class HistoryChart;
class SegmentedChoice;
class WrappedText;

/// Everything about one application: what it uses now, what it did in the last half hour, day or week, and
/// what the system knows it by. The past and the names stand when they come.
class AppDetails : public Card {
    Q_OBJECT
public:
    explicit AppDetails(PageContext& context, QWidget* parent = nullptr);

    /// Shows this application as it is now.
    void show(const ResourceAppList::App& app, const Known& known, const AppStyle& style);

Q_SIGNALS:
    void processesWanted();
    void historyWanted();
    void closed();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* makeBody();
    QLayout* makePresent();
    QLayout* makePast();
    void want();
    void identify(const ResourceAppList::App& app);
    bool isLive() const; ///< whether the last half hour is chosen
    void showHalfHour();
    void showPast(const HistoryAsker::Answer& answer);
    void showPast(const HistorySeries& series, const HistorySeries::Period& period, const AppMetrics& total);
    void showNoPast(const QString& why);

    PageContext& context_;
    HistoryAsker asker_;
    std::string key_; ///< of the application, in the history
    AppStyle style_;
    QBoxLayout* halves_; ///< now and the past
    FactTable* facts_;
    SegmentedChoice* span_;
    HistoryChart* chart_;
    FactTable* past_;
    QLabel* noPast_; ///< why there is no past
    WrappedText* bundle_;
    WrappedText* identifier_;
    SerialQueue queue_{"com.kelmora.quarn.applications"}; ///< last: what runs on it ends first
};

} // namespace quarn::desktop
