#include "desktop/history/HistoryKeeping.h"

#include "desktop/Page.h"
#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/settings/SettingLine.h"
#include "history/HistoryFiles.h"
#include "history/MetricsRecorder.h"
#include "ui/settings/Prefs.h"

#include <QCoreApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

namespace quarn::desktop {

namespace {

QLabel* sentenceLabel(bool isDim) {
    auto* label = new QLabel;
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    if (!isDim) return label;
    label->setFont(Theme::captionFont());
    label->setProperty("dim", true);
    return label;
}

QString stateText(const HistoryStatus& status) {
    switch (status.state) {
    case HistoryStatus::State::off:
        return say("Nothing is being recorded. What was recorded before is kept.");
    case HistoryStatus::State::recording: return say("Quarn records as long as it runs, once a minute.");
    case HistoryStatus::State::otherRecorder:
        return say("Another program of yours records the history. This one shows what it writes, and goes on "
                   "when it ends.");
    case HistoryStatus::State::failed:
        return say("The history cannot be used. Nothing is recorded until it is turned off and on again.");
    }
    return {};
}

} // namespace

HistoryKeeping::HistoryKeeping(PageContext& context, QWidget* parent)
    : Card(say("What is kept"), parent),
      context_(context),
      wanted_(new SettingLine(*settingRow("saveMetricsHistory"), context.prefs.saveMetricsHistory)),
      state_(sentenceLabel(false)),
      clear_(new QPushButton(say("Clear the history …"))) {
    connect(wanted_, &SettingLine::failed, this, &HistoryKeeping::failed);
    connect(wanted_, &SettingLine::stored, this, [this] { wanted_->load(); });
    connect(clear_, &QPushButton::clicked, this, [this] { askToClear(); });
    auto* terms = sentenceLabel(true);
    terms->setText(say("The machine by minutes for a week, by hours for 90 days, by days for two years; "
                       "applications by hours for a month and by days for a year. It never leaves this "
                       "computer:") +
                   "\n" + QString::fromStdString(metricsFile().string()));
    content().addWidget(wanted_);
    content().addWidget(state_);
    content().addWidget(terms);
    auto* row = new QHBoxLayout;
    row->addWidget(clear_);
    row->addStretch(1);
    content().addLayout(row);
}

void HistoryKeeping::show(const HistoryStatus& status) {
    wanted_->load();
    const QString state = stateText(status);
    if (state_->text() != state) state_->setText(state);
    // The other program would go on where this one deletes.
    clear_->setEnabled(status.state != HistoryStatus::State::otherRecorder);
}

void HistoryKeeping::askToClear() {
    auto* question = new QMessageBox(QMessageBox::Question, say("Quarn"),
                                     say("Delete the whole history of this computer and its applications? "
                                         "This cannot be undone."),
                                     QMessageBox::Cancel, this);
    question->setTextFormat(Qt::PlainText);
    question->setAttribute(Qt::WA_DeleteOnClose);
    auto* yes = question->addButton(say("Delete the history"), QMessageBox::AcceptRole);
    question->setDefaultButton(QMessageBox::Cancel);
    connect(question, &QMessageBox::buttonClicked, this, [this, yes](const QAbstractButton* clicked) {
        if (clicked == yes) clear();
    });
    question->open();
}

void HistoryKeeping::clear() {
    context_.metrics.clear([self = QPointer<HistoryKeeping>(this)](std::optional<std::string> problem) {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self, problem = std::move(problem)] {
                if (!self) return;
                if (problem)
                    Q_EMIT self->failed(say("The history could not be cleared: %1").arg(toQt(*problem)));
                else
                    Q_EMIT self->cleared();
            },
            Qt::QueuedConnection);
    });
}

} // namespace quarn::desktop
