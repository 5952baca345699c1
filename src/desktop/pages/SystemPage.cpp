// The machine itself.
#include "desktop/Text.h"
#include "desktop/pages/Pages.h"
#include "desktop/widgets/Card.h"
#include "desktop/widgets/FactTable.h"
#include "desktop/widgets/FlowGrid.h"
#include "monitor/Monitor.h"
#include "ui/modules/Facts.h"
#include "ui/modules/Format.h"
#include "ui/modules/PageSentences.h"

#include <QApplication>
#include <QClipboard>
#include <QPushButton>
#include <QVBoxLayout>

namespace quarn::desktop {
namespace {

constexpr int cardWidth = 320;

class SystemPage final : public Page {
public:
    explicit SystemPage(PageContext& context)
        : Page(context, say("System")), groups_(hardwareFacts(context.monitor.hardware())) {
        auto* copy = new QPushButton(say("Copy all"));
        copy->setToolTip(say("Copies everything on this page as text"));
        connect(copy, &QPushButton::clicked, this, [this] { copyAll(); });
        addTool(copy);
        auto* cards = new FlowGrid(cardWidth);
        groups_.back().facts.push_back({"Running for", "", ""});
        for (const FactGroup& group : groups_) {
            auto* card = new Card(say(group.title));
            tables_.push_back(new FactTable);
            tables_.back()->show(group.facts);
            card->content().addWidget(tables_.back());
            card->content().addStretch();
            cards->add(card);
        }
        content().addWidget(cards);
        content().addStretch(1);
    }

    void refresh(const Snapshot& snapshot, const Known& known) override {
        setSentence(toQt(machineSentence(context_.monitor.hardware(), snapshot, known)));
        groups_.back().facts.back().value = known.uptime ? format::duration(snapshot.uptime) : "";
        tables_.back()->show(groups_.back().facts);
    }

private:
    void copyAll() const {
        QStringList lines;
        for (const auto& line : plainLines(groups_)) lines << toQt(line);
        QApplication::clipboard()->setText(lines.join('\n'));
    }

    std::vector<FactGroup> groups_;
    std::vector<FactTable*> tables_;
};

} // namespace

Page* makeSystemPage(PageContext& context) { return new SystemPage(context); }

} // namespace quarn::desktop
