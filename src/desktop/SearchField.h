#pragma once

#include "monitor/Snapshot.h"

#include <QLineEdit>
#include <functional>

class QListWidget;

namespace quarn::desktop {

class Navigator;

/// The global search: pages, processes by name or pid, and settings by their label or explanation. Choosing a
/// hit opens its page; on the process and settings pages what was typed is searched for.
class SearchField : public QLineEdit {
    Q_OBJECT
public:
    using Processes = std::function<SharedList<ProcInfo>()>;
    SearchField(Navigator& navigator, Processes processes, QWidget* parent = nullptr);

    struct Hit {
        QString title;
        QString kind; ///< "Page", "Process", "Setting"
        QString page;
        QString search; ///< what the page is asked to search for
    };
    /// The best hits for what was typed, pages first, at most twelve.
    static std::vector<Hit> hits(const QString& typed, const SharedList<ProcInfo>& processes);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void showHits();
    void choose(int row);

    Navigator& navigator_;
    Processes processes_;
    QListWidget* list_;
    std::vector<Hit> hits_;
};

} // namespace quarn::desktop
