#pragma once

#include "monitor/AppWatch.h"

#include <QLineEdit>
#include <functional>
#include <optional>

class QListWidget;

namespace quarn::desktop {

class Navigator;

/// The global search: pages, applications, processes by name or pid, and settings by their label or
/// explanation. Choosing a hit opens its page, which searches for it in turn.
class SearchField : public QLineEdit {
    Q_OBJECT
public:
    using Processes = std::function<SharedList<ProcInfo>()>;
    SearchField(Navigator& navigator, AppWatch& apps, Processes processes, QWidget* parent = nullptr);

    struct Hit {
        QString title;
        QString kind; ///< "Page", "Application", "Process", "Setting"
        QString page;
        QString search; ///< what the page is asked to search for
    };
    /// The best hits for what was typed, pages first, at most twelve.
    static std::vector<Hit> hits(const QString& typed, const ResourceAppList* apps,
                                 const SharedList<ProcInfo>& processes);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void showHits();
    void choose(int row);

    Navigator& navigator_;
    AppWatch& apps_;
    std::optional<AppListRetention> listed_; ///< while somebody searches
    Processes processes_;
    QListWidget* list_;
    std::vector<Hit> hits_;
};

} // namespace quarn::desktop
