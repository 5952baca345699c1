#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>

/// How the flat interface hands out lists: see the head of sc.h.
namespace scutil {

/// Copies `text` into a fixed array, cut to its size less one, NUL-terminated, the rest zero.
template <size_t size>
void copyText(char (&out)[size], std::string_view text) {
    const size_t length = std::min(text.find('\0') == text.npos ? text.size() : text.find('\0'), size - 1);
    std::copy_n(text.data(), length, out);
    std::fill(out + length, out + size, '\0');
}

/// A zero-filled block of items.size() + 1 records, each filled by `fill(item, record)`; null, with a count
/// of 0, when it could not be allocated.
template <class Record, class Items, class Fill>
Record* flatRecords(const Items& items, uint32_t* count, Fill fill) {
    auto* records = static_cast<Record*>(std::calloc(items.size() + 1, sizeof(Record)));
    if (count) *count = records ? static_cast<uint32_t>(items.size()) : 0;
    if (!records) return nullptr;
    size_t at = 0;
    for (const auto& item : items) fill(item, records[at++]);
    return records;
}

} // namespace scutil
