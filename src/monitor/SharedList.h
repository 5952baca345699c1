#pragma once

#include "HelperKit/Locked.h"

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <utility>
#include <vector>

namespace quarn {

/// An immutable list whose copies share one block: copying a Snapshot copies no list.
template <class T>
class SharedList {
public:
    SharedList() = default;
    SharedList(std::vector<T> items) // NOLINT(google-explicit-constructor): a list is a list
        : items_(items.empty() ? nullptr : std::make_shared<const std::vector<T>>(std::move(items))) {}
    SharedList(std::initializer_list<T> items) : SharedList(std::vector<T>(items)) {}
    explicit SharedList(std::shared_ptr<const std::vector<T>> items) : items_(std::move(items)) {}

    auto begin() const { return data(); }
    auto end() const { return data() + size(); }
    size_t size() const { return items_ ? items_->size() : 0; }
    bool empty() const { return size() == 0; }
    const T* data() const { return items_ ? items_->data() : nullptr; }
    const T& operator[](size_t index) const { return (*items_)[index]; }
    const T& front() const { return items_->front(); }

private:
    std::shared_ptr<const std::vector<T>> items_;
};

/// The lists of one producer, used again: when the last reader lets go of a shared list, its storage with
/// what it held waits to be filled anew. Readers may let go on any thread, also after the pool is gone.
template <class T>
class ListPool {
public:
    /// A list that was shared earlier, with what it held then, or an empty one.
    std::vector<T> take() {
        return spares_->withValue([](std::vector<std::vector<T>>& spares) {
            if (spares.empty()) return std::vector<T>();
            auto list = std::move(spares.back());
            spares.pop_back();
            return list;
        });
    }

    SharedList<T> share(std::vector<T> list) const {
        return SharedList<T>(std::shared_ptr<const std::vector<T>>(
            new std::vector<T>(std::move(list)), [spares = spares_](std::vector<T>* last) {
                const std::unique_ptr<std::vector<T>> done(last);
                constexpr size_t mostSpares = 2; // more are there only after readers kept many lists
                spares->withValue([&](std::vector<std::vector<T>>& waiting) {
                    if (waiting.size() < mostSpares) waiting.push_back(std::move(*done));
                });
            }));
    }

private:
    std::shared_ptr<Locked<std::vector<std::vector<T>>>> spares_ =
        std::make_shared<Locked<std::vector<std::vector<T>>>>();
};

} // namespace quarn
