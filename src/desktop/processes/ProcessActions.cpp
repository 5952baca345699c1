#include "desktop/processes/ProcessActions.h"

#include "desktop/Background.h"
#include "desktop/Text.h"
#include "desktop/processes/ProcessQueue.h"
#include "monitor/Monitor.h"

#include <QMenu>
#include <QMessageBox>
#include <QPushButton>

namespace quarn::desktop {

ProcessActions::ProcessActions(Monitor& monitor, QWidget* window)
    : QObject(window), monitor_(monitor), window_(window) {}

void ProcessActions::fill(QMenu& menu, const std::vector<ProcInfo>& processes) {
    menu.setToolTipsVisible(true);
    const auto add = [&](QMenu& into, const ProcessCommand& command) {
        QAction* action = into.addAction(say(command.title));
        action->setToolTip(say(command.meaning));
        connect(action, &QAction::triggered, this, [this, &command, processes] { run(command, processes); });
        return action;
    };
    for (const auto& command : commonCommands()) {
        QAction* action = add(menu, command);
        if (&command == &askToQuit()) action->setShortcut(QKeySequence::Delete);
        if (&command == &forceToQuit()) action->setShortcut(Qt::SHIFT | Qt::Key_Delete);
    }
    menu.addSeparator();
    QMenu* signals_ = menu.addMenu(say("Send a signal"));
    signals_->setToolTipsVisible(true);
    for (const auto& command : otherSignals()) add(*signals_, command);
    QMenu* priority = menu.addMenu(say("Priority"));
    for (const auto& command : priorities()) add(*priority, command);
}

void ProcessActions::run(const ProcessCommand& command, std::vector<ProcInfo> processes, Ask ask) {
    if (processes.empty()) return;
    if (ask == Ask::asTheCommandSays && command.confirm == ProcessCommand::Confirm::no) {
        carryOutAll(command, std::move(processes));
        return;
    }
    auto* question = new QMessageBox(QMessageBox::Question, say("Quarn"),
                                     QString::fromStdString(commandQuestion(command, processes)),
                                     QMessageBox::Cancel, window_);
    question->setTextFormat(Qt::PlainText);
    question->setAttribute(Qt::WA_DeleteOnClose);
    auto* yes = question->addButton(say(command.title).remove(" …"), QMessageBox::AcceptRole);
    question->setDefaultButton(QMessageBox::Cancel);
    connect(question, &QMessageBox::buttonClicked, this,
            [this, &command, processes = std::move(processes), yes](const QAbstractButton* clicked) {
                if (clicked == yes) carryOutAll(command, processes);
            });
    question->open();
}

void ProcessActions::carryOutAll(const ProcessCommand& command, std::vector<ProcInfo> processes) {
    inBackground(
        processQueue(), this,
        [&command, processes = std::move(processes), root = monitor_.root(),
         bootTime = monitor_.hardware().bootTime.value_or(0)] {
            std::string sentences;
            for (const ProcInfo& process : processes) {
                const auto answer = carryOut(command, process, root, bootTime);
                const std::string sentence = answerSentence(command, process, answer);
                if (!sentence.empty()) sentences.append(sentences.empty() ? "" : " ").append(sentence);
            }
            return sentences;
        },
        [this](const std::string& sentences) {
            if (!sentences.empty()) Q_EMIT failed(QString::fromStdString(sentences));
        });
}

} // namespace quarn::desktop
