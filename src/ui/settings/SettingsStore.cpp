#include "ui/settings/SettingsStore.h"

#include "HelperKit/Log.h"
#include "ui/settings/SettingsText.h"

#include <fmt/format.h>

namespace quarn {

namespace fs = std::filesystem;
using SteadyClock = std::chrono::steady_clock;

/// What is known of the file. `values` and `text` are those of its last sound content.
struct SettingsStore::State {
    std::shared_ptr<const SettingsValues> values = std::make_shared<const SettingsValues>();
    std::string text;
    std::optional<FileStamp> stamp; ///< of the content looked at last; none when it must be looked at again
    uint64_t generation = 0;
    SteadyClock::time_point nextLook; ///< the epoch: the first read looks
    std::string report;               ///< for the log, once the lock is released
    std::string problem;              ///< of the file as it is now

    bool adopt(std::string newText, SettingsValues newValues);
    bool look(const SettingsFile& file);
    bool take(const SettingsFile& file, SettingsFile::Reading reading);
};

bool SettingsStore::State::adopt(std::string newText, SettingsValues newValues) {
    text = std::move(newText);
    if (newValues == *values) return false;
    values = std::make_shared<const SettingsValues>(std::move(newValues));
    ++generation;
    return true;
}

/// Reads the file unless it is plainly the one read last; answers whether the values changed.
bool SettingsStore::State::look(const SettingsFile& file) {
    if (stamp && file.stamp() == stamp && !stamp->isRecent()) return false;
    return take(file, file.read());
}

bool SettingsStore::State::take(const SettingsFile& file, SettingsFile::Reading reading) {
    stamp.reset();
    problem.clear();
    if (reading.state == SettingsFile::State::missing) return adopt({}, {});
    if (reading.state == SettingsFile::State::unreadable) {
        report = problem =
            fmt::format("cannot read the settings in {}: {}. The last known settings or the defaults are "
                        "used, and the file is left alone. Make it readable to use and change settings.",
                        file.path().string(), reading.problem);
        return false;
    }
    stamp = reading.stamp;
    if (reading.text == text) return false;
    auto parsed = parseSettings(reading.text);
    if (!parsed.error) return adopt(std::move(reading.text), std::move(parsed.values));
    report = problem =
        fmt::format("the settings in {} cannot be understood ({}). The last known settings or the defaults "
                    "are used. Mend that line; otherwise the next change of a setting keeps this file under "
                    "another name and starts a new one.",
                    file.path().string(), *parsed.error);
    return false;
}

SettingsStore::SettingsStore(fs::path file, std::chrono::nanoseconds recheckAfter)
    : file_(std::move(file)), recheckAfter_(recheckAfter), state_(std::make_unique<State>()) {}

SettingsStore::~SettingsStore() = default;

std::shared_ptr<const SettingsValues> SettingsStore::values() const {
    const auto now = SteadyClock::now();
    bool changed = false;
    std::string report;
    auto result = state_.withValue([&](const auto& state) {
        if (now >= state->nextLook) {
            state->nextLook = now + recheckAfter_;
            changed = state->look(file_);
            report.swap(state->report);
        }
        return state->values;
    });
    settle(changed, report);
    return result;
}

std::optional<SettingValue> SettingsStore::value(std::string_view key) const {
    const auto all = values();
    const auto found = all->find(key);
    if (found == all->end()) return {};
    return found->second;
}

void SettingsStore::refresh() const {
    state_.withValue([](const auto& state) { state->nextLook = {}; });
    values();
}

uint64_t SettingsStore::generation() const {
    values();
    return state_.withValue([](const auto& state) { return state->generation; });
}

std::string SettingsStore::problem() const {
    values();
    return state_.withValue([](const auto& state) { return state->problem; });
}

void SettingsStore::set(std::string_view key, SettingValue value) {
    update([&](const SettingsValues&) { return SettingChanges{{std::string(key), std::move(value)}}; });
}

void SettingsStore::remove(std::string_view key) {
    refresh();
    if (!values()->contains(key)) return;
    update([&](const SettingsValues&) { return SettingChanges{{std::string(key), std::nullopt}}; });
}

void SettingsStore::update(const std::function<SettingChanges(const SettingsValues&)>& decide) {
    const auto lock = file_.lock();
    auto reading = file_.read();
    if (reading.state == SettingsFile::State::unreadable)
        throw SettingsError(
            fmt::format("cannot change settings: {} cannot be read: {}. It was left alone. Make it "
                        "readable and try again.",
                        file().string(), reading.problem));
    const std::string current = reading.text;
    bool changed = false;
    std::string base; // differs from `current` when that is broken
    std::shared_ptr<const SettingsValues> values;
    state_.withValue([&](const auto& state) {
        changed = state->take(file_, std::move(reading));
        state->report.clear(); // a broken file is dealt with below
        base = state->text;
        values = state->values;
    });
    settle(changed, {});

    const auto changes = decide(*values);
    if (changes.empty()) return;
    const auto edited = editedSettings(base, changes);
    if (!edited) throw SettingsError("cannot store a setting that is not valid text");
    if (*edited == current) return;

    std::string report;
    const FileStamp stamp =
        current == base ? file_.replace(*edited) : replaceBroken(current, *edited, report);
    changed = state_.withValue([&](const auto& state) {
        const bool differs = state->adopt(*edited, parseSettings(*edited).values);
        state->stamp = stamp;
        state->problem.clear();
        return differs;
    });
    settle(changed, report);
}

FileStamp SettingsStore::replaceBroken(const std::string& broken, const std::string& text,
                                       std::string& report) {
    const fs::path aside = file_.keepAside(broken);
    try {
        const FileStamp stamp = file_.replace(text);
        report =
            fmt::format("the settings in {} could not be understood. They are kept in {}, and a new file was "
                        "started from what was known; copy over what you need.",
                        file().string(), aside.string());
        return stamp;
    } catch (const SettingsError&) {
        std::error_code ignored;
        fs::remove(aside, ignored); // the broken file is still in its place
        throw;
    }
}

SettingsStore::Subscription SettingsStore::observe(Executor& executor, std::function<void()> changed) {
    auto observer = std::make_shared<const Observer>(Observer{executor, std::move(changed)});
    observers_.withValue([&](auto& all) { all.push_back(observer); });
    return observer;
}

/// What follows a look or a write once no lock is held.
void SettingsStore::settle(bool changed, const std::string& report) const {
    if (!report.empty()) log(report);
    if (!changed) return;
    const auto all = observers_.withValue([](auto& observers) {
        std::erase_if(observers, [](const auto& observer) { return observer.expired(); });
        return observers;
    });
    for (const auto& weak : all)
        if (const auto observer = weak.lock())
            observer->executor.async([weak] {
                if (const auto alive = weak.lock()) alive->changed();
            });
}

} // namespace quarn
