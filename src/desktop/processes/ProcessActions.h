#pragma once

#include "ui/modules/ProcessCommand.h"

#include <QObject>
#include <vector>

class QMenu;
class QWidget;

namespace quarn {
class Monitor;
}

namespace quarn::desktop {

/// What can be done to the chosen processes: menu entries, questions, and the doing of it off the main
/// thread.
class ProcessActions : public QObject {
    Q_OBJECT
public:
    /// `window` is what questions stand above.
    ProcessActions(Monitor& monitor, QWidget* window);

    /// Adds the entries that act on these.
    void fill(QMenu& menu, const std::vector<ProcInfo>& processes);
    /// Asks first where the command wants it, or always.
    enum class Ask { asTheCommandSays, always };
    void run(const ProcessCommand& command, std::vector<ProcInfo> processes, Ask ask = Ask::asTheCommandSays);

Q_SIGNALS:
    /// Something could not be done: a sentence that says why.
    void failed(const QString& sentence);

private:
    void carryOutAll(const ProcessCommand& command, std::vector<ProcInfo> processes);

    Monitor& monitor_;
    QWidget* window_;
};

} // namespace quarn::desktop
