#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace quarn {

/// Numbers texts from 0 in the order in which they first come; equal texts have the same number. A text that
/// comes again from the same address is found without reading it, and copies of a Text share their address:
/// so thousands of processes are sorted into their applications by comparing addresses. The texts must stay
/// where they are as long as this is used. Clearing keeps the storage.
class TextNumbers {
public:
    size_t number(std::string_view text) {
        Recent& recent = recent_[slot(reinterpret_cast<uintptr_t>(text.data()) * mixer)];
        if (recent.data == text.data() && recent.size == text.size()) return recent.number;
        recent = {text.data(), text.size(), numberByText(text)};
        return recent.number;
    }

    size_t size() const { return texts_.size(); }
    std::string_view text(size_t number) const { return texts_[number]; }

    void clear() {
        recent_.assign(recent_.size(), {});
        places_.assign(places_.size(), 0);
        texts_.clear();
    }

private:
    static constexpr uint64_t mixer = 0x9e3779b97f4a7c15; ///< spreads the bits of a hash into the upper ones
    static constexpr int slotBits = 11;

    struct Recent {
        const char* data = nullptr;
        size_t size = SIZE_MAX; ///< of none: the empty text has no address either
        size_t number = 0;
    };

    static size_t slot(uint64_t hash) { return hash >> (64 - slotBits); }

    size_t numberByText(std::string_view text) {
        if ((texts_.size() + 1) * 2 > places_.size()) grow();
        uint32_t& place = placeOf(text);
        if (place == 0) {
            texts_.push_back(text);
            place = static_cast<uint32_t>(texts_.size());
        }
        return place - 1;
    }

    /// Where the number of `text` stands, or is to be put.
    uint32_t& placeOf(std::string_view text) {
        const size_t mask = places_.size() - 1;
        size_t at = std::hash<std::string_view>()(text) & mask;
        while (places_[at] != 0 && texts_[places_[at] - 1] != text) at = (at + 1) & mask;
        return places_[at];
    }

    void grow() {
        places_.assign(places_.size() * 2, 0);
        for (size_t number = 0; number < texts_.size(); ++number)
            placeOf(texts_[number]) = static_cast<uint32_t>(number + 1);
    }

    std::vector<Recent> recent_ =
        std::vector<Recent>(size_t{1} << slotBits);             ///< by address, the latest of each
    std::vector<uint32_t> places_ = std::vector<uint32_t>(512); ///< by text: number + 1, 0 where free
    std::vector<std::string_view> texts_;
};

} // namespace quarn
