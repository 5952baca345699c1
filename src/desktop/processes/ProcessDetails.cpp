#include "desktop/processes/ProcessDetails.h"

#include "desktop/Background.h"
#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/processes/ProcessModel.h"
#include "desktop/processes/ProcessQueue.h"
#include "desktop/widgets/CloseButton.h"
#include "desktop/widgets/FactTable.h"
#include "desktop/widgets/WrappedText.h"
#include "monitor/Monitor.h"
#include "ui/modules/Format.h"

#include <QKeyEvent>
#include <QLabel>
#include <QScrollArea>
#include <QToolButton>
#include <QVBoxLayout>

namespace quarn::desktop {

namespace {

constexpr double askAgainAfter = 10;      ///< seconds: titles and folders change
constexpr size_t longestCommand = 16'384; ///< bytes; compilers are given megabytes

struct Line {
    const char* label;
    ProcessField field;
    const char* unit = nullptr; ///< what the text of the field leaves out
};
constexpr Line lines[]{
    {"CPU", ProcessField::cpu, " % of a core"},
    {"Memory", ProcessField::memory},
    {"Disk read", ProcessField::diskRead},
    {"Disk written", ProcessField::diskWritten},
    {"CPU time", ProcessField::cpuTime},
    {"Threads", ProcessField::threads},
    {"Context switches", ProcessField::switches, "/s"},
    {"State", ProcessField::state},
    {"User", ProcessField::user},
    {"Started", ProcessField::started},
};

QString unknownText() { return toQt(format::unknown); }

/// "systemd (1) › gnome-shell (812)": the ancestors, the nearest last.
QString ancestors(const ProcInfo& process, const ProcessRows& rows) {
    QStringList names;
    int64_t pid = process.ppid;
    for (int depth = 0; depth < 12 && pid > 0; ++depth) {
        const ProcInfo* parent = rows.find(pid);
        const QString number = QString::number(pid);
        names.prepend(parent ? toQt(parent->name) + " (" + number + ")" : number);
        if (!parent || parent->ppid == pid) break;
        pid = parent->ppid;
    }
    return names.isEmpty() ? unknownText() : names.join(QString::fromUtf8(" › "));
}

} // namespace

ProcessDetails::ProcessDetails(Monitor& monitor, QWidget* parent)
    : Card(say("Process"), parent),
      monitor_(monitor),
      facts_(new FactTable),
      commandLine_(new WrappedText(say("Command line"))),
      program_(new WrappedText(say("Program"))),
      folder_(new WrappedText(say("Works in"))),
      ancestors_(new WrappedText(say("Started by"))) {
    auto* close = closeButton(say("Close (Esc)"), say("Close the details"));
    addCorner(close);
    connect(close, &QToolButton::clicked, this, &ProcessDetails::closed);

    auto* body = new QWidget;
    auto* column = new QVBoxLayout(body);
    column->setContentsMargins(0, 0, Theme::gap, 0);
    column->setSpacing(Theme::gap);
    column->addWidget(facts_);
    for (WrappedText* text : {commandLine_, program_, folder_, ancestors_}) {
        auto* caption = new QLabel(text->accessibleName());
        caption->setProperty("dim", true);
        caption->setBuddy(text);
        auto* block = new QVBoxLayout;
        block->setSpacing(2);
        block->addWidget(caption);
        block->addWidget(text);
        column->addLayout(block);
    }
    column->addStretch(1);
    auto* scroll = new QScrollArea;
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidget(body);
    scroll->viewport()->setAutoFillBackground(false);
    body->setAutoFillBackground(false);
    content().addWidget(scroll, 1);
    setMinimumSize(260, 160);
}

std::optional<int64_t> ProcessDetails::pid() const {
    return shown_ ? std::optional(shown_->pid) : std::nullopt;
}

void ProcessDetails::show(const ProcessRow& row, const ProcessRows& rows, WallTime now) {
    const ProcInfo& process = *row.process;
    const bool isAnother = !shown_ || keyOf(*shown_) != keyOf(process);
    if (isAnother) answers_.reset();
    shown_ = process;
    if (isAnother || (steadySeconds() - askedAt_ > askAgainAfter && row.life != ProcessRow::Life::exited))
        ask(process);
    setTitle(toQt(process.name));
    setNote(row.life == ProcessRow::Life::exited ? say("has ended") : QString("PID %1").arg(process.pid));

    std::vector<FactTable::Fact> facts;
    for (const Line& line : lines) {
        QString value = toQt(shownField(process, line.field, rows.known(), now));
        if (line.unit && value != unknownText()) value += say(line.unit);
        if (line.field == ProcessField::user && !process.user.empty())
            value += QString(" (%1)").arg(process.uid);
        facts.push_back({say(line.label), value,
                         say(std::string(whyUnknown(process, line.field, rows.known())).c_str())});
    }
    const auto total = [&](const char* label, uint64_t bytes) {
        facts.push_back({say(label), process.ioKnown ? toQt(format::diskSize(bytes)) : unknownText(), {}});
    };
    total("Read in all", process.diskRead);
    total("Written in all", process.diskWrite);
    facts.push_back({say("Priority (nice)"),
                     answers_ && answers_->priority ? QString::number(*answers_->priority) : unknownText(),
                     {}});
    facts_->show(facts);
    program_->show(toQt(shownField(process, ProcessField::path, rows.known(), now)));
    ancestors_->show(ancestors(process, rows));
    showAnswers();
}

void ProcessDetails::ask(const ProcInfo& process) {
    askedAt_ = steadySeconds();
    inBackground(
        processQueue(), this,
        [root = monitor_.root(), pid = static_cast<int32_t>(process.pid)] {
            Answers answers;
            if (const auto words = sysinfo::platform::processCommandLine(root, pid)) {
                answers.commandLine = shellWords(*words);
                if (answers.commandLine->size() > longestCommand)
                    answers.commandLine->replace(longestCommand, std::string::npos, " …");
            }
            answers.folder = sysinfo::platform::processWorkingFolder(root, pid);
            answers.priority = sysinfo::platform::processPriority(root, pid);
            return answers;
        },
        [this, key = keyOf(process)](Answers answers) {
            if (!shown_ || keyOf(*shown_) != key) return;
            // A process that ended since tells nothing any more; what it told before stays.
            if (answers_ && !answers.commandLine) return;
            answers_ = std::move(answers);
            showAnswers();
        });
}

void ProcessDetails::showAnswers() {
    if (!answers_) {
        commandLine_->show(QString::fromUtf8("…"));
        folder_->show(QString::fromUtf8("…"));
        return;
    }
    const QString denied = say("Only its owner and the administrator may read this.");
    folder_->show(answers_->folder ? toQt(*answers_->folder) : unknownText());
    folder_->setToolTip(answers_->folder ? QString() : denied);
    const auto& command = answers_->commandLine;
    commandLine_->show(!command           ? unknownText()
                       : command->empty() ? say("None: a thread of the kernel, or a process that has ended.")
                                          : toQt(*command));
    commandLine_->setToolTip(command ? QString() : denied);
}

void ProcessDetails::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        Q_EMIT closed();
    else
        Card::keyPressEvent(event);
}

} // namespace quarn::desktop
