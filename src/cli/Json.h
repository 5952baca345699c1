#pragma once

#include "cli/Fields.h"
#include "cli/JsonWriter.h"

#include <ranges>
#include <type_traits>

namespace quarn::cli {

template <class T>
concept Record = requires {
    sizeof(Fields<T>);
};

template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<std::optional<T>> = true;

/// Writes any value that the fields of a record hold: numbers and texts, times as seconds since the epoch,
/// enumerations by name, nullopt as null, lists, records, and pointers as what they point to.
template <class T>
void writeJson(JsonWriter& json, const T& value, const Known& known) {
    if constexpr (isOptional<T>) {
        if (value) {
            writeJson(json, *value, known);
        } else {
            json.null();
        }
    } else if constexpr (Record<T>) {
        json.beginObject();
        Fields<T>::each(value, known, [&](std::string_view name, const auto& field) {
            json.key(name);
            writeJson(json, field, known);
        });
        json.endObject();
    } else if constexpr (std::is_pointer_v<T>) {
        writeJson(json, *value, known);
    } else if constexpr (std::is_same_v<T, bool>) {
        json.boolean(value);
    } else if constexpr (std::is_same_v<T, ThermalState>) {
        json.string(thermalStateName(value));
    } else if constexpr (std::is_same_v<T, WallTime>) {
        json.number(std::chrono::duration<double>(value.time_since_epoch()).count());
    } else if constexpr (std::is_convertible_v<const T&, std::string_view>) {
        json.string(value);
    } else if constexpr (std::is_floating_point_v<T>) {
        json.number(double{value});
    } else if constexpr (std::is_signed_v<T>) {
        json.number(int64_t{value});
    } else if constexpr (std::is_unsigned_v<T>) {
        json.number(uint64_t{value});
    } else {
        json.beginArray();
        for (const auto& item : value) writeJson(json, item, known);
        json.endArray();
    }
}

} // namespace quarn::cli
