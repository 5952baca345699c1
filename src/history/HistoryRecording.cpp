// The continuous recording.
#include "HelperKit/Log.h"
#include "HelperKit/ReplaceFile.h"
#include "history/HistoryExport.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>

#include <fmt/format.h>

namespace quarn::HistoryExport {

namespace {

std::string describe(int error, const std::filesystem::path& file) {
    return std::system_error(error, std::generic_category(), file.string()).what();
}

} // namespace

Recorder::~Recorder() {
    queue_.sync([this] {
        close();
        alive_.reset(); // what is still posted finds nobody
    });
}

void Recorder::startRecording(const std::filesystem::path& url) {
    queue_.sync([&] {
        close();
        open(url);
    });
}

void Recorder::open(const std::filesystem::path& url) {
    fmt_ = {};
    const std::string begin = fmt_.header + '\n';
    const bool special = isSpecialFile(url);
    if (!special) replaceFile(url, begin, NewFile::asUsual);
    scutil::UniqueFd handle(::open(url.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC | O_NOCTTY));
    if (!handle || (special && !writeAll(handle.get(), begin)))
        throw std::system_error(errno, std::generic_category(), url.string());
    handle_ = std::move(handle);
    goodSize_ = static_cast<int64_t>(begin.size());
    state_.set({.isRecording = true, .url = url});
    isRecording_ = true;
}

void Recorder::record(SharedSample sample) {
    if (!isRecording_) return;
    queue_.async([this, alive = std::weak_ptr(alive_), sample = std::move(sample)] {
        if (alive.lock() && handle_) write(*sample);
    });
}

void Recorder::write(const HistorySample& sample) {
    const std::string text = line(sample, fmt_.separator, fmt_.decimalComma) + '\n';
    struct stat status {};
    if (!writeAll(handle_.get(), text)) return fail(errno);
    if (::fstat(handle_.get(), &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 0)
        return fail(ENOENT); // somebody has deleted the file: nobody will ever read this
    goodSize_ += static_cast<int64_t>(text.size());
    state_.withValue([](State& state) { ++state.written; });
}

void Recorder::fail(int error) {
    [[maybe_unused]] const int ignored = ::ftruncate(handle_.get(), goodSize_); // a pipe cannot be
    const std::string message = describe(error, state_.get().url);
    log(fmt::format("could not record the measurements: {}", message));
    state_.withValue([&](State& state) {
        ++state.lost;
        state.lastError = message;
    });
}

void Recorder::stopRecording() {
    queue_.sync([this] { close(); });
}

void Recorder::close() {
    if (!handle_) return;
    isRecording_ = false;
    if (::fsync(handle_.get()) != 0 && errno != EINVAL && errno != EROFS) { // pipes and devices have no disk
        const int error = errno;
        state_.withValue([&](State& state) { state.lastError = describe(error, state.url); });
    }
    handle_.reset();
    state_.withValue([](State& state) { state.isRecording = false; });
}

} // namespace quarn::HistoryExport
