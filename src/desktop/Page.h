#pragma once

#include "monitor/Snapshot.h"
#include "ui/modules/Known.h"

#include <QWidget>
#include <functional>
#include <vector>

class QVBoxLayout;

namespace quarn {
class AppWatch;
class LiveHistory;
class LiveRecord;
class MetricsRecorder;
class Monitor;
class Prefs;
struct ResourceAppList;
} // namespace quarn

namespace quarn::desktop {

class ElidedLabel;
class Navigator;

/// What pages work with; outlives them.
struct PageContext {
    Monitor& monitor;
    Prefs& prefs;
    const LiveHistory& history; ///< the readings of the last half hour, one point a tick
    AppWatch& apps;             ///< use by application, now
    MetricsRecorder& metrics;   ///< the long-term history
    LiveRecord& live;           ///< the last half hour, for export and recording
    Navigator& navigator;
};

/// How a page reaches others.
class Navigator {
public:
    virtual ~Navigator() = default;
    /// Shows the page with this id; one with a search field gets `search` into it unless that is empty.
    virtual void open(const QString& page, const QString& search = {}) = 0;
};

/// One page of the window: its title, one sentence of state, then its content in a scroll area. A page does
/// work only while it is shown.
class Page : public QWidget {
    Q_OBJECT
public:
    explicit Page(PageContext& context, const QString& title, QWidget* parent = nullptr);

    /// Brings the page up to date. Called with each tick while the page is visible, and when it becomes so.
    virtual void refresh(const Snapshot& snapshot, const Known& known) = 0;
    /// What the search field of the page should hold; pages without one ignore it.
    virtual void search(const QString& text);
    /// Whether the list of applications is to be kept up to date while the page is shown.
    virtual bool needsApplications() const { return false; }
    /// Brings up to date what the page shows of that list. Called when the list changed while the page is
    /// shown, and when the page becomes so.
    virtual void showApplications(const ResourceAppList&, const Snapshot&, const Known&) {}

protected:
    /// The one sentence of state under the title, in plain words.
    void setSentence(const QString& sentence);
    /// Where cards and tables go, from top to bottom; it scrolls as a whole unless `contentFills`.
    QVBoxLayout& content();
    /// A page whose table scrolls by itself: content fills the window and does not scroll as a whole.
    void contentFills();
    /// Buttons and fields at the right of the title.
    void addTool(QWidget* tool);

    PageContext& context_;

private:
    ElidedLabel* sentence_;
    QWidget* body_;
    QWidget* tools_;
    QVBoxLayout* content_;
    QWidget* scroll_;
};

/// One row of the table of pages. A new page is one file and one row.
struct PageEntry {
    const char* id;    ///< stored in settings, stable
    const char* title; ///< through the translation hook
    const char* icon;  ///< a name of Icon.h
    const char* group; ///< heading in the sidebar; rows of one group stand together
    std::function<Page*(PageContext&)> make;
};

/// All pages in their built-in order.
const std::vector<PageEntry>& pageTable();

} // namespace quarn::desktop
