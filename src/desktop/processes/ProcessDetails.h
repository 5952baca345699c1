#pragma once

#include "desktop/widgets/Card.h"
#include "ui/modules/ProcessRows.h"

namespace quarn {
class Monitor;
}

namespace quarn::desktop {

class FactTable;
class WrappedText;

/// Everything about one process. What must be asked of the kernel (command line, folder, priority) is read
/// off the main thread and stands when it comes.
class ProcessDetails : public Card {
    Q_OBJECT
public:
    explicit ProcessDetails(Monitor& monitor, QWidget* parent = nullptr);

    /// Shows this process as it is now. `rows` knows its ancestors.
    void show(const ProcessRow& row, const ProcessRows& rows, WallTime now);
    /// The pid that is shown.
    std::optional<int64_t> pid() const;

Q_SIGNALS:
    void closed();

private:
    /// What is asked of the kernel; absent when it may not be read.
    struct Answers {
        std::optional<std::string> commandLine, folder;
        std::optional<int> priority;
    };
    void ask(const ProcInfo& process);
    void showAnswers();
    void keyPressEvent(QKeyEvent* event) override;

    Monitor& monitor_;
    FactTable* facts_;
    WrappedText* commandLine_;
    WrappedText* program_;
    WrappedText* folder_;
    WrappedText* ancestors_;
    std::optional<ProcInfo> shown_;
    std::optional<Answers> answers_; ///< absent until they came
    double askedAt_ = 0;
};

} // namespace quarn::desktop
