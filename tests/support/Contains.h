#pragma once

#include <string_view>

namespace quarn::testing {

/// Whether `text` holds `part`; an expectation that fails on it shows the text.
inline ::testing::AssertionResult contains(std::string_view text, std::string_view part) {
    const bool found = text.find(part) != std::string_view::npos;
    return ::testing::AssertionResult(found) << '"' << part << "\" in:\n" << text;
}

} // namespace quarn::testing
