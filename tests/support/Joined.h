#pragma once

#include <functional>
#include <iomanip>
#include <optional>
#include <sstream>
#include <string>

namespace quarn::testing {

template <class Value>
void put(std::ostream& out, const Value& value) {
    if constexpr (requires { value.view(); })
        out << value.view();
    else
        out << value;
}

template <class Value>
void put(std::ostream& out, const std::optional<Value>& value) {
    if (value)
        put(out, *value);
    else
        out << '-';
}

/// The values as one text, "eth0|1000|-|0.25", "-" for an absent one: what a test compares of a record.
template <class First, class... Others>
std::string joined(const First& first, const Others&... others) {
    std::ostringstream out;
    put(out << std::setprecision(10), first);
    (put(out << '|', others), ...);
    return out.str();
}

/// The same of each item, with a blank behind each; the fields are members or functions of an item.
template <class Items, class... Fields>
std::string joinedEach(const Items& items, const Fields&... fields) {
    std::string all;
    for (const auto& item : items) all += joined(std::invoke(fields, item)...) + ' ';
    return all;
}

} // namespace quarn::testing
