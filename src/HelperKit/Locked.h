#pragma once

#include <mutex>
#include <utility>

namespace quarn {

/// A value that several threads touch. All access goes through `withValue`, which holds the lock while the
/// closure runs; a closure must not call back into the same Locked.
template <class T>
class Locked {
public:
    Locked() = default;
    explicit Locked(T value) : value_(std::move(value)) {}

    /// Runs `use(T&)` and returns what it returns, by value.
    template <class Use>
    auto withValue(Use&& use) {
        const std::lock_guard lock(mutex_);
        return std::forward<Use>(use)(value_);
    }
    template <class Use>
    auto withValue(Use&& use) const {
        const std::lock_guard lock(mutex_);
        return std::forward<Use>(use)(value_);
    }

    T get() const {
        return withValue([](const T& value) { return value; });
    }
    void set(T value) {
        withValue([&](T& current) { current = std::move(value); });
    }

private:
    mutable std::mutex mutex_;
    T value_{};
};

} // namespace quarn
