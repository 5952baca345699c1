#pragma once

#include <atomic>
#include <compare>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace sysinfo {

/// An immutable text whose copies share one block, so that a list of thousands of processes is copied
/// without one allocation. Safe to copy and destroy on different threads; the empty text owns nothing.
class Text {
public:
    Text() = default;
    Text(std::string_view text); // NOLINT(google-explicit-constructor): a text is a text
    Text(const char* text) : Text(std::string_view(text)) {}
    Text(const std::string& text) : Text(std::string_view(text)) {}
    Text(const Text& other) noexcept : block_(other.block_) {
        if (block_) block_->references.fetch_add(1, std::memory_order_relaxed);
    }
    Text(Text&& other) noexcept : block_(std::exchange(other.block_, nullptr)) {}
    Text& operator=(const Text& other) noexcept {
        if (block_ != other.block_) *this = Text(other);
        return *this;
    }
    Text& operator=(Text&& other) noexcept {
        std::swap(block_, other.block_);
        return *this;
    }
    ~Text() {
        if (block_) release();
    }

    std::string_view view() const {
        return block_ ? std::string_view(reinterpret_cast<const char*>(block_ + 1), block_->length)
                      : std::string_view();
    }
    operator std::string_view() const { return view(); } // NOLINT(google-explicit-constructor)
    bool empty() const { return block_ == nullptr; }

    friend bool operator==(const Text& a, const Text& b) {
        return a.block_ == b.block_ || a.view() == b.view();
    }
    friend bool operator==(const Text& a, std::string_view b) { return a.view() == b; }
    friend bool operator==(const Text& a, const char* b) { return a.view() == b; }

private:
    struct Block {
        std::atomic<uint32_t> references;
        uint32_t length; // the characters follow the block
    };

    void release() noexcept;

    Block* block_ = nullptr;
};

} // namespace sysinfo
