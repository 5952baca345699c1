#pragma once

#include "HelperKit/Locked.h"
#include "HelperKit/Queue.h"
#include "core/UniqueFd.h"
#include "history/HistorySample.h"

#include <atomic>
#include <filesystem>
#include <string>

namespace quarn {

/// The live history as CSV text, one line a sample.
namespace HistoryExport {

inline constexpr std::string_view header =
    "time,cpu_total,cpu_user,cpu_system,ram_used_B,swap_B,disk_read_Bs,disk_write_Bs,net_rx_Bs,net_tx_Bs,"
    "system_power_W,cpu_power_W,gpu_pct,hottest_C,battery_pct,processes,threads,top1_name,top1_cpu";

/// What dialogs propose as the name of a file.
inline constexpr std::string_view exportName = "quarn-history.csv";
inline constexpr std::string_view recordingName = "quarn-recording.csv";

struct Format {
    std::string separator = ",";
    bool decimalComma = false; ///< "," instead of "." in numbers
    std::string header{HistoryExport::header};
};

/// With as many decimals; empty when absent, infinite or not a number.
std::string number(std::optional<double> value, int decimals, bool decimalComma);
/// In double quotes where the text holds the separator, a quote or a line end; otherwise as it is.
std::string escapeCell(std::string_view text, std::string_view separator);
/// The 19 cells of `header`, without a line end. Always UTF-8.
std::string line(const HistorySample& sample, std::string_view separator, bool decimalComma);

/// Writes header and samples, in the place of a former file and whole or not at all. Waits for the disk.
/// Throws std::system_error, whose text begins with the path.
void writeCSV(const std::filesystem::path& file, std::span<const SharedSample> samples);

/// Appends a line to a file of the user's choice for each sample, until it is stopped.
///
/// A failed write loses its line and no other: recording goes on, and so it does once a full disk has room
/// again. What a failed write left of a line is removed. Any thread; the file is only touched on the queue.
class Recorder {
public:
    struct State {
        bool isRecording = false;
        std::filesystem::path url = {};            ///< of the running recording, or the last one
        uint64_t written = 0;                      ///< samples in it
        uint64_t lost = 0;                         ///< that could not be written
        std::optional<std::string> lastError = {}; ///< of this recording
    };

    /// `queue`, "com.kelmora.quarn.recording", must outlive this.
    explicit Recorder(Queue& queue) : queue_(queue) {}
    /// Stops.
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    /// Begins a file with the header, in the place of a former one; ends a recording that runs. A pipe or a
    /// device is written to as it is. Waits for the disk. Throws std::system_error, whose text begins with
    /// the path; nothing is recorded then.
    void startRecording(const std::filesystem::path& url);
    /// Gives a sample to a running recording; returns at once.
    void record(SharedSample sample);
    /// Waits until what was given is on the disk.
    void stopRecording();

    bool isRecording() const { return isRecording_; }
    State state() const { return state_.get(); }

private:
    // On the queue.
    void open(const std::filesystem::path& url);
    void write(const HistorySample& sample);
    void close();
    void fail(int error);

    Queue& queue_;
    Format fmt_;
    Locked<State> state_;
    std::atomic<bool> isRecording_{false};

    // Of the queue.
    scutil::UniqueFd handle_;
    int64_t goodSize_ = 0; ///< bytes of whole lines
    std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

} // namespace HistoryExport

} // namespace quarn
