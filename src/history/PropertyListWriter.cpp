#include "history/PropertyListWriter.h"

#include "HelperKit/Utf8.h"
#include "history/PropertyListFormat.h"

#include <algorithm>
#include <bit>

namespace quarn {

using namespace propertyList;

namespace {

int bytesFor(uint64_t value) {
    int width = 1;
    while (width < 8 && value >> (8 * width) != 0) ++width;
    return width;
}

std::u16string utf16(std::string_view text) {
    std::u16string units;
    while (!text.empty()) {
        const auto [code, bytes, wellFormed] = firstCharacter(text);
        text.remove_prefix(bytes);
        if (code >= 0x10000) {
            units += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
            units += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
        } else {
            units += static_cast<char16_t>(code);
        }
    }
    return units;
}

} // namespace

PropertyListWriter::Ref PropertyListWriter::begin() {
    if (out_.empty()) out_.assign(magic.begin(), magic.end());
    offsets_.push_back(out_.size());
    return static_cast<Ref>(offsets_.size() - 1);
}

void PropertyListWriter::bigEndian(uint64_t value, int width) {
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8)
        out_.push_back(static_cast<uint8_t>(value >> shift));
}

void PropertyListWriter::mark(uint8_t kind, size_t count) {
    if (count < countFollows) return out_.push_back(static_cast<uint8_t>(kind | count));
    out_.push_back(kind | countFollows);
    out_.push_back(integerKind | 3);
    bigEndian(count, 8);
}

PropertyListWriter::Ref PropertyListWriter::integer(int64_t value) {
    const Ref ref = begin();
    out_.push_back(integerKind | 3);
    bigEndian(static_cast<uint64_t>(value), 8);
    return ref;
}

PropertyListWriter::Ref PropertyListWriter::real(double value) {
    const auto bits = std::bit_cast<uint64_t>(value);
    Ref& ref = numbers_.at(bits);
    if (ref != Numbers::none) return ref;
    ref = begin();
    out_.push_back(realKind | 3);
    bigEndian(bits, 8);
    return ref;
}

PropertyListWriter::Ref PropertyListWriter::string(std::string_view text) {
    const Ref ref = begin();
    if (std::all_of(text.begin(), text.end(), [](char c) { return static_cast<uint8_t>(c) < 0x80; })) {
        mark(asciiKind, text.size());
        out_.insert(out_.end(), text.begin(), text.end());
    } else {
        const std::u16string units = utf16(text);
        mark(utf16Kind, units.size());
        for (const char16_t unit : units) bigEndian(unit, 2);
    }
    return ref;
}

PropertyListWriter::Ref PropertyListWriter::strings(const std::vector<std::string>& texts) {
    std::vector<Ref> items;
    items.reserve(texts.size());
    for (const auto& text : texts) items.push_back(string(text));
    return array(std::move(items));
}

PropertyListWriter::Ref PropertyListWriter::reals(const std::vector<double>& values) {
    std::vector<Ref> items;
    items.reserve(values.size());
    for (const double value : values) items.push_back(real(value));
    return array(std::move(items));
}

PropertyListWriter::Ref PropertyListWriter::array(std::vector<Ref> items) {
    const Ref ref = begin();
    containers_.push_back({ref, arrayKind, std::move(items)});
    return ref;
}

PropertyListWriter::Ref
PropertyListWriter::dictionary(const std::vector<std::pair<std::string_view, Ref>>& entries) {
    std::vector<Ref> items;
    items.reserve(2 * entries.size());
    for (const auto& entry : entries) items.push_back(string(entry.first));
    for (const auto& entry : entries) items.push_back(entry.second);
    const Ref ref = begin();
    containers_.push_back({ref, dictionaryKind, std::move(items)});
    return ref;
}

Data PropertyListWriter::finish(Ref top) {
    // Containers come last, for only now is it known how wide a reference must be.
    const int refWidth = bytesFor(offsets_.size());
    for (const Container& container : containers_) {
        offsets_[container.self] = out_.size();
        mark(container.kind,
             container.kind == dictionaryKind ? container.items.size() / 2 : container.items.size());
        for (const Ref item : container.items) bigEndian(item, refWidth);
    }
    const uint64_t table = out_.size();
    const int offsetWidth = bytesFor(table);
    for (const uint64_t offset : offsets_) bigEndian(offset, offsetWidth);

    out_.insert(out_.end(), trailerUnused, 0);
    out_.push_back(static_cast<uint8_t>(offsetWidth));
    out_.push_back(static_cast<uint8_t>(refWidth));
    bigEndian(offsets_.size(), 8);
    bigEndian(top, 8);
    bigEndian(table, 8);
    return std::move(out_);
}

PropertyListWriter::Ref& PropertyListWriter::Numbers::at(uint64_t bits) {
    if ((used_ + 1) * 4 > places_.size() * 3) grow();
    Place& place = find(bits);
    if (place.ref == none) {
        place.bits = bits;
        ++used_;
    }
    return place.ref;
}

PropertyListWriter::Numbers::Place& PropertyListWriter::Numbers::find(uint64_t bits) {
    constexpr uint64_t mixer = 0x9e3779b97f4a7c15;
    const size_t mask = places_.size() - 1;
    size_t at = (bits * mixer) >> (64 - std::countr_zero(places_.size()));
    while (places_[at].ref != none && places_[at].bits != bits) at = (at + 1) & mask;
    return places_[at];
}

void PropertyListWriter::Numbers::grow() {
    const auto former = std::exchange(places_, std::vector<Place>(places_.size() * 2));
    for (const Place& place : former)
        if (place.ref != none) find(place.bits) = place;
}

} // namespace quarn
