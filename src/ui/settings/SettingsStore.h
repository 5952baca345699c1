#pragma once

#include "HelperKit/Locked.h"
#include "HelperKit/Queue.h"
#include "ui/settings/SettingValue.h"
#include "ui/settings/SettingsFile.h"

#include <chrono>
#include <memory>
#include <string_view>

namespace quarn {

/// The user's settings: a file of keys and values that this program, other running copies of it and the
/// user's editor may all change. Any thread may call anything here.
///
/// Reading is cheap: the values are kept, and at most every `recheckAfter` one system call looks whether the
/// file has changed. Writing goes to disk at once and keeps whatever else the file holds, as it is at that
/// moment.
///
/// A file that is broken or cannot be read is reported once in the log; reads then answer what was known last
/// (nothing at first, so defaults apply). A broken file is left for the user to mend until the next write,
/// which first keeps it aside under a new name.
class SettingsStore {
public:
    static constexpr std::chrono::milliseconds usualRecheck{250};

    /// `file` need not exist; it is created by the first write. An empty path is a store that cannot be
    /// written.
    explicit SettingsStore(std::filesystem::path file, std::chrono::nanoseconds recheckAfter = usualRecheck);
    ~SettingsStore();
    SettingsStore(const SettingsStore&) = delete;
    SettingsStore& operator=(const SettingsStore&) = delete;

    const std::filesystem::path& file() const { return file_.path(); }

    /// All stored values; never null. One call answers one moment, several calls may not.
    std::shared_ptr<const SettingsValues> values() const;
    /// nullopt when the key is not stored.
    std::optional<SettingValue> value(std::string_view key) const;

    /// Stores one value; throws SettingsError when it could not be stored, with nothing changed.
    void set(std::string_view key, SettingValue value);
    /// Forgets one key, which then answers its default; nothing when it is not stored. Throws SettingsError.
    void remove(std::string_view key);
    /// Makes several changes in one step: `decide` sees the values as they are in the file, with every other
    /// writer kept out, and answers what to change. Must not write to this store. Throws SettingsError.
    void update(const std::function<SettingChanges(const SettingsValues&)>& decide);

    /// Looks at the file now, however short ago the last look was.
    void refresh() const;
    /// Grows with each change of the values, whoever made it.
    uint64_t generation() const;

    /// Why the file that there is now cannot be used, and what to do: what the log was told. Empty when it
    /// can.
    std::string problem() const;

    /// As long as it is kept, an observer is called.
    using Subscription = std::shared_ptr<const void>;
    /// Calls `changed` on `executor` after each change of the values. Changes by others are found by reading:
    /// someone must read now and then, as each tick does. Dropped on the executor's thread, the subscription
    /// has ended when that returns. `executor` outlives the subscription.
    [[nodiscard]] Subscription observe(Executor& executor, std::function<void()> changed);

private:
    struct Observer {
        Executor& executor;
        std::function<void()> changed;
    };
    struct State;

    FileStamp replaceBroken(const std::string& broken, const std::string& text, std::string& report);
    void settle(bool changed, const std::string& report) const;

    SettingsFile file_;
    std::chrono::nanoseconds recheckAfter_;
    mutable Locked<std::unique_ptr<State>> state_;
    mutable Locked<std::vector<std::weak_ptr<const Observer>>> observers_;
};

} // namespace quarn
