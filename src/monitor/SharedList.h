#pragma once

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

} // namespace quarn
