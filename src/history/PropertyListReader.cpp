#include "history/PropertyListReader.h"

#include "HelperKit/Utf8.h"
#include "history/PropertyListFormat.h"

#include <algorithm>
#include <bit>

namespace quarn {

using namespace propertyList;

std::optional<PropertyListReader> PropertyListReader::open(DataView data) {
    constexpr std::string_view anyVersion = magic.substr(0, 7);
    if (data.size() < magic.size() + trailerSize) return {};
    if (!std::equal(anyVersion.begin(), anyVersion.end(), data.begin())) return {};

    PropertyListReader reader;
    reader.data_ = data;
    const uint64_t trailer = data.size() - trailerSize;
    reader.offsetWidth_ = data[trailer + 6];
    reader.refWidth_ = data[trailer + 7];
    reader.objects_ = reader.bigEndian(trailer + 8, 8);
    reader.top_ = reader.bigEndian(trailer + 16, 8);
    reader.table_ = reader.bigEndian(trailer + 24, 8);

    const auto isWidth = [](uint64_t width) { return width >= 1 && width <= 8; };
    if (!isWidth(reader.offsetWidth_) || !isWidth(reader.refWidth_)) return {};
    if (reader.table_ < magic.size() || reader.table_ > trailer) return {};
    if (reader.objects_ > (trailer - reader.table_) / reader.offsetWidth_) return {};
    if (reader.top_ >= reader.objects_) return {};
    return reader;
}

/// `width` bytes at `at`, which the caller has checked.
uint64_t PropertyListReader::bigEndian(uint64_t at, uint64_t width) const {
    uint64_t value = 0;
    for (uint64_t i = 0; i < width; ++i) value = value << 8 | data_[at + i];
    return value;
}

uint64_t PropertyListReader::bytesOfOne(uint8_t kind) const {
    switch (kind) {
    case utf16Kind: return 2;
    case arrayKind: return refWidth_;
    case dictionaryKind: return 2 * refWidth_;
    default: return 1;
    }
}

std::optional<PropertyListReader::Object> PropertyListReader::object(uint64_t number) const {
    if (number >= objects_) return {};
    uint64_t at = bigEndian(table_ + number * offsetWidth_, offsetWidth_);
    if (at < magic.size() || at >= table_) return {};
    Object result{static_cast<uint8_t>(data_[at] & 0xF0), data_[at] & 0x0FU, at + 1};
    if (result.kind == integerKind || result.kind == realKind) {
        if (result.count > 3) return {}; // wider ones than 8 bytes hold nothing that is read here
        result.count = uint64_t{1} << result.count;
    } else if (result.count == countFollows) {
        const uint64_t width = at + 1 < table_ ? data_[at + 1] : 0;
        if (width < integerKind || width > (integerKind | 3)) return {};
        const uint64_t bytes = uint64_t{1} << (width - integerKind);
        if (table_ - at - 2 < bytes) return {};
        result.count = bigEndian(at + 2, bytes);
        result.at = at + 2 + bytes;
    }
    if (result.count > (table_ - result.at) / bytesOfOne(result.kind)) return {};
    return result;
}

std::optional<PropertyListReader::Object> PropertyListReader::container(uint64_t number, uint8_t kind,
                                                                        uint64_t most) const {
    const auto found = object(number);
    return found && found->kind == kind && found->count <= most ? found : std::nullopt;
}

uint64_t PropertyListReader::reference(const Object& container, uint64_t index) const {
    return bigEndian(container.at + index * refWidth_, refWidth_);
}

using Value = PropertyListReader::Value;

std::optional<int64_t> Value::integer() const {
    const auto object = reader_->object(object_);
    if (!object || object->kind != integerKind) return {};
    return static_cast<int64_t>(reader_->bigEndian(object->at, object->count)); // only wide ones have a sign
}

std::optional<double> Value::number() const {
    const auto object = reader_->object(object_);
    if (!object) return {};
    const bool wide = object->count == 8;
    if (object->kind == realKind && wide) return std::bit_cast<double>(reader_->bigEndian(object->at, 8));
    if (object->kind == realKind && object->count == 4)
        return std::bit_cast<float>(static_cast<uint32_t>(reader_->bigEndian(object->at, 4)));
    if (object->kind == integerKind)
        return static_cast<double>(static_cast<int64_t>(reader_->bigEndian(object->at, object->count)));
    return {};
}

std::optional<std::string> Value::string(size_t most) const {
    const auto object = reader_->object(object_);
    if (!object || object->count > most) return {};
    std::string text;
    if (object->kind == asciiKind) {
        const auto bytes = reader_->data_.subspan(object->at, object->count);
        return repairedUtf8(std::string(bytes.begin(), bytes.end()));
    }
    if (object->kind != utf16Kind) return {};
    for (uint64_t i = 0; i < object->count; ++i) {
        const auto unitAt = [&](uint64_t index) {
            return static_cast<char32_t>(reader_->bigEndian(object->at + 2 * index, 2));
        };
        char32_t code = unitAt(i);
        const char32_t low = (code & 0xFC00) == 0xD800 && i + 1 < object->count ? unitAt(i + 1) : 0;
        if ((low & 0xFC00) == 0xDC00) {
            code = 0x10000 + ((code & 0x3FF) << 10) + (low & 0x3FF);
            ++i;
        } else if ((code & 0xF800) == 0xD800) {
            code = Utf8Character().code;
        }
        appendCharacter(text, code);
    }
    return text;
}

std::optional<std::vector<Value>> Value::items(size_t most) const {
    const auto array = reader_->container(object_, arrayKind, most);
    if (!array) return {};
    std::vector<Value> items;
    items.reserve(array->count);
    for (uint64_t i = 0; i < array->count; ++i) items.push_back({reader_, reader_->reference(*array, i)});
    return items;
}

std::optional<std::vector<double>> Value::numbers(size_t most) const {
    const auto array = reader_->container(object_, arrayKind, most);
    if (!array) return {};
    std::vector<double> numbers(array->count);
    for (uint64_t i = 0; i < array->count; ++i) {
        const auto number = Value(reader_, reader_->reference(*array, i)).number();
        if (!number) return {};
        numbers[i] = *number;
    }
    return numbers;
}

std::vector<std::pair<std::string, Value>> Value::entries() const {
    constexpr uint64_t mostEntries = 1000;
    constexpr size_t longestKey = 100;
    std::vector<std::pair<std::string, Value>> entries;
    const auto dictionary = reader_->container(object_, dictionaryKind, mostEntries);
    for (uint64_t i = 0; dictionary && i < dictionary->count; ++i)
        if (auto key = Value(reader_, reader_->reference(*dictionary, i)).string(longestKey))
            entries.emplace_back(std::move(*key),
                                 Value(reader_, reader_->reference(*dictionary, dictionary->count + i)));
    return entries;
}

std::optional<Value> Value::operator[](std::string_view key) const {
    for (const auto& [name, value] : entries())
        if (name == key) return value;
    return {};
}

} // namespace quarn
