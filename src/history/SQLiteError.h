#pragma once

#include <stdexcept>
#include <string>

namespace quarn {

/// What SQLite, or the store above it, refused; `what()` is the message for the log.
class SQLiteError : public std::runtime_error {
public:
    /// `resultCode` is SQLite's extended result code, 0 for a refusal of our own.
    explicit SQLiteError(const std::string& text, int resultCode = 0)
        : std::runtime_error(text), message(text), code(resultCode) {}

    /// The file is damaged or no database at all: trying again will not help.
    bool isBroken() const;
    /// The SQL does not fit the tables that are there.
    bool isMisfit() const;

    std::string message;
    int code;
};

} // namespace quarn
