// The settings: one line each, in groups; see SettingRows.h for the table of them.
#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/pages/Pages.h"
#include "desktop/panels/Placement.h"
#include "desktop/settings/SettingLine.h"
#include "desktop/tray/Tray.h"
#include "desktop/widgets/Card.h"
#include "desktop/widgets/Notice.h"
#include "desktop/widgets/PageSearch.h"
#include "ui/settings/Prefs.h"

#include <QLabel>
#include <QVBoxLayout>

namespace quarn::desktop {
namespace {

constexpr int widest = 860; ///< beyond it, eyes lose the way from a label to its editor

class SettingsPage final : public Page {
public:
    explicit SettingsPage(PageContext& context)
        : Page(context, say("Settings")),
          prefs_(context.prefs),
          notice_(new Notice),
          column_(new QWidget),
          search_(new PageSearch(*this, *column_, say("Search settings"),
                                 say("A word of a setting's name or explanation"))),
          nothing_(new QLabel(say("No setting matches what you typed. Clear the search to see them all."))) {
        connect(search_, &QLineEdit::textChanged, this, [this] { filter(); });
        addTool(search_);
        addGroups();
        load();
    }

    void refresh(const Snapshot&, const Known&) override {
        if (prefs_.d.generation() != generation_) load();
        QString problem = toQt(prefs_.d.problem());
        if (!problem.isEmpty()) problem[0] = problem[0].toUpper();
        if (std::exchange(problem_, problem) != problem) notice_->tell(problem);
    }

    void search(const QString& text) override { search_->setText(text); }

protected:
    void showEvent(QShowEvent* event) override {
        Page::showEvent(event);
        for (const auto& group : groups_) {
            group.note->setText(noteOn(group.table));
            group.note->setHidden(group.note->text().isEmpty());
        }
    }

private:
    struct Group {
        const SettingRowGroup& table;
        Card* card;
        QLabel* note; ///< what the desktop at hand makes of the group
        std::vector<SettingLine*> lines;
    };

    void addGroups() {
        column_->setMaximumWidth(widest);
        auto* groups = new QVBoxLayout(column_);
        groups->setContentsMargins(0, 0, 0, 0);
        groups->setSpacing(Theme::gap);
        nothing_->setProperty("dim", true);
        nothing_->hide();
        groups->addWidget(notice_);
        groups->addWidget(nothing_);
        for (const auto& table : settingRowGroups()) {
            Group group{table, new Card(say(table.title)), new QLabel, {}};
            for (const auto& row : table.rows) {
                auto* setting = prefs_.find(row.key);
                if (!setting) continue;
                auto* line = new SettingLine(row, *setting);
                connect(line, &SettingLine::failed, notice_, &Notice::tell);
                connect(line, &SettingLine::stored, this, [this] {
                    notice_->tell({});
                    load();
                });
                group.card->content().addWidget(line);
                group.lines.push_back(line);
            }
            group.note->setWordWrap(true);
            group.note->setFont(Theme::captionFont());
            group.card->content().addWidget(group.note);
            groups->addWidget(group.card);
            groups_.push_back(std::move(group));
        }
        auto* where = new QLabel(say("The settings are stored in a file that you may edit as well:") + "\n" +
                                 QString::fromStdString(prefs_.d.file().string()));
        where->setTextFormat(Qt::PlainText);
        where->setTextInteractionFlags(Qt::TextSelectableByMouse);
        where->setFont(Theme::captionFont());
        where->setProperty("dim", true);
        groups->addWidget(where);
        groups->addStretch();
        auto* aside = new QHBoxLayout;
        aside->addWidget(column_, 1);
        aside->addStretch();
        content().addLayout(aside);
    }

    static QString noteOn(const SettingRowGroup& group) {
        if (group.title == "Panels") return placementNotice();
        if (group.title == "Status items" && !trayIsThere())
            return say(
                "This desktop has no tray, so status items cannot be shown; they appear as soon as there is "
                "one. Until then the window opens at every launch, and closing it ends Quarn.");
        return {};
    }

    void load() {
        generation_ = prefs_.d.generation();
        int changed = 0;
        for (const auto& group : groups_) {
            for (auto* line : group.lines) {
                line->load();
                changed += line->isChanged();
                const auto& needed = line->row().onlyWhile;
                const auto* other = needed ? prefs_.find(needed->key) : nullptr;
                line->setEnabled(!other || other->storedValue() == SettingValue(needed->value));
            }
        }
        setSentence(changed == 0 ? say("Every setting has its default. Changes act at once.")
                    : changed == 1
                        ? say("One setting differs from its default. Changes act at once.")
                        : say("%1 settings differ from their defaults. Changes act at once.").arg(changed));
    }

    void filter() {
        const std::string query = search_->text().trimmed().toStdString();
        bool any = false;
        for (const auto& group : groups_) {
            bool anyHere = false;
            for (auto* line : group.lines) {
                const bool matches = settingMatches(group.table, line->row(), query);
                line->setVisible(matches);
                anyHere |= matches;
            }
            group.card->setVisible(anyHere);
            any |= anyHere;
        }
        nothing_->setVisible(!any);
    }

    Prefs& prefs_;
    Notice* notice_;
    QWidget* column_; ///< with all groups
    PageSearch* search_;
    QLabel* nothing_;
    std::vector<Group> groups_;
    uint64_t generation_ = 0;
    QString problem_; ///< of the file, as told last
};

} // namespace

Page* makeSettingsPage(PageContext& context) { return new SettingsPage(context); }

} // namespace quarn::desktop
