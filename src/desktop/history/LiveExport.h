#pragma once

#include "HelperKit/SerialQueue.h"
#include "desktop/widgets/Card.h"

#include <filesystem>
#include <functional>

class QFileDialog;
class QPushButton;

namespace quarn {
class LiveRecord;
}

namespace quarn::desktop {

/// The measurements of the last half hour as a CSV file, and a recording that appends every new one to a file
/// until it is stopped. Files are written off the main thread.
class LiveExport : public Card {
    Q_OBJECT
public:
    explicit LiveExport(LiveRecord& live, QWidget* parent = nullptr);

    /// Shows how the recording is going. Cheap enough for every tick.
    void refresh();
    QString state() const; ///< the sentence that is shown

    /// Writes the last half hour into `file`, in the place of a former one.
    void save(const std::filesystem::path& file);
    void start(const std::filesystem::path& file);
    void stop();

private:
    using Then = void (LiveExport::*)(const std::filesystem::path&);
    void askForFile(const QString& title, std::string_view name, Then then);
    void run(std::function<QString()> work);
    QString recordingText() const;

    LiveRecord& live_;
    QLabel* state_;
    QPushButton* save_;
    QPushButton* record_;
    QString said_;                                  ///< of what was done last
    SerialQueue queue_{"com.kelmora.quarn.export"}; ///< last: what runs on it ends first
};

} // namespace quarn::desktop
