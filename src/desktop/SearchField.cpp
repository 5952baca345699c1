#include "desktop/SearchField.h"

#include "desktop/Icon.h"
#include "desktop/Page.h"
#include "desktop/Text.h"
#include "ui/modules/SettingRows.h"

#include <QKeyEvent>
#include <QListWidget>
#include <set>

namespace quarn::desktop {

SearchField::SearchField(Navigator& navigator, AppWatch& apps, Processes processes, QWidget* parent)
    : QLineEdit(parent),
      navigator_(navigator),
      apps_(apps),
      processes_(std::move(processes)),
      list_(new QListWidget(this)) {
    setPlaceholderText(say("Search (Ctrl+K)"));
    setAccessibleName(say("Search pages, applications, processes and settings"));
    setClearButtonEnabled(true);
    addAction(icon("search"), LeadingPosition);
    list_->setWindowFlags(Qt::ToolTip);
    list_->setFocusPolicy(Qt::NoFocus);
    list_->setAccessibleName(say("Hits"));
    connect(this, &QLineEdit::textEdited, this, [this] { showHits(); });
    connect(list_, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* item) { choose(list_->row(item)); });
}

std::vector<SearchField::Hit> SearchField::hits(const QString& typed, const ResourceAppList* apps,
                                                const SharedList<ProcInfo>& processes) {
    // So that each kind is found beside many of the kinds before.
    constexpr size_t most = 12, mostApps = 5, mostProcesses = 8;
    std::vector<Hit> found;
    const QString query = typed.trimmed();
    if (query.isEmpty()) return found;
    for (const auto& page : pageTable())
        if (say(page.title).contains(query, Qt::CaseInsensitive))
            found.push_back({say(page.title), say("Page"), page.id, {}});
    if (apps)
        for (const auto& app : apps->apps) {
            if (found.size() >= mostApps) break;
            if (const QString name = toQt(app.name); name.contains(query, Qt::CaseInsensitive))
                found.push_back({name, say("Application"), "applications", name});
        }
    std::set<std::string_view> names;
    for (const auto& process : processes) {
        if (found.size() >= mostProcesses) break;
        const bool byPid = QString::number(process.pid) == query;
        if (!byPid && !toQt(process.name).contains(query, Qt::CaseInsensitive)) continue;
        if (!byPid && !names.insert(process.name.view()).second) continue;
        found.push_back({byPid ? toQt(process.name) + " (" + query + ")" : toQt(process.name), say("Process"),
                         "processes", byPid ? query : toQt(process.name)});
    }
    for (const auto& group : settingRowGroups())
        for (const auto& row : group.rows)
            if (settingMatches(group, row, query.toStdString()))
                found.push_back({say(row.label), say("Setting"), "settings", query});
    if (found.size() > most) found.resize(most);
    return found;
}

void SearchField::showHits() {
    hits_ = hits(text(), apps_.latest().get(), processes_());
    list_->clear();
    for (const auto& hit : hits_) list_->addItem(hit.title + "   —   " + hit.kind);
    if (hits_.empty()) {
        list_->hide();
        return;
    }
    list_->setCurrentRow(0);
    const int rows = static_cast<int>(hits_.size());
    list_->setGeometry(
        QRect(mapToGlobal(QPoint(0, height() + 2)), QSize(420, rows * list_->sizeHintForRow(0) + 6)));
    list_->show();
}

void SearchField::choose(int row) {
    if (row < 0 || row >= static_cast<int>(hits_.size())) return;
    const Hit hit = hits_[static_cast<size_t>(row)];
    list_->hide();
    clear();
    navigator_.open(hit.page, hit.search);
}

void SearchField::keyPressEvent(QKeyEvent* event) {
    const int row = list_->currentRow();
    switch (event->key()) {
    case Qt::Key_Down: list_->setCurrentRow(std::min(row + 1, list_->count() - 1)); return;
    case Qt::Key_Up: list_->setCurrentRow(std::max(row - 1, 0)); return;
    case Qt::Key_Return:
    case Qt::Key_Enter: choose(row); return;
    case Qt::Key_Escape:
        list_->hide();
        clear();
        return;
    default: QLineEdit::keyPressEvent(event);
    }
}

void SearchField::focusInEvent(QFocusEvent* event) {
    listed_.emplace(apps_);
    QLineEdit::focusInEvent(event);
}

void SearchField::focusOutEvent(QFocusEvent* event) {
    listed_.reset();
    list_->hide();
    QLineEdit::focusOutEvent(event);
}

} // namespace quarn::desktop
