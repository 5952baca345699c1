#pragma once

#include "HelperKit/Data.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quarn {

/// Reads a binary property list that nobody vouches for. Nothing is read ahead: each object is checked when
/// it is asked for, so that a document which refers to itself, or to one object a million times, costs only
/// what is asked of it. Does not own the data.
class PropertyListReader {
public:
    /// One object of a document. What it is not, it does not answer; nothing here throws.
    class Value {
    public:
        std::optional<int64_t> integer() const;
        /// Of a real or an integer.
        std::optional<double> number() const;
        /// As UTF-8; absent as well when it has more than `most` characters.
        std::optional<std::string> string(size_t most) const;

        /// The items of an array, unless there are more than `most`.
        std::optional<std::vector<Value>> items(size_t most) const;
        /// An array of numbers, unless there are more than `most`.
        std::optional<std::vector<double>> numbers(size_t most) const;
        /// What a dictionary of at most a thousand entries keeps under `key`.
        std::optional<Value> operator[](std::string_view key) const;
        /// The entries of such a dictionary, but for those whose keys are no texts of at most 100 characters.
        std::vector<std::pair<std::string, Value>> entries() const;

    private:
        friend class PropertyListReader;
        Value(const PropertyListReader* reader, uint64_t object) : reader_(reader), object_(object) {}

        const PropertyListReader* reader_; ///< must outlive the value
        uint64_t object_;
    };

    /// nullopt when the head, the table and the trailer do not fit together.
    static std::optional<PropertyListReader> open(DataView data);
    Value top() const { return {this, top_}; }

private:
    struct Object {
        uint8_t kind = 0;
        uint64_t count = 0; ///< of an integer or real: its bytes
        uint64_t at = 0;    ///< where its content begins; all of it lies before the table
    };
    std::optional<Object> object(uint64_t number) const;
    std::optional<Object> container(uint64_t number, uint8_t kind, uint64_t most) const;
    uint64_t bytesOfOne(uint8_t kind) const;
    uint64_t reference(const Object& container, uint64_t index) const;
    uint64_t bigEndian(uint64_t at, uint64_t width) const;

    DataView data_;
    uint64_t offsetWidth_ = 0;
    uint64_t refWidth_ = 0;
    uint64_t objects_ = 0; ///< how many there are
    uint64_t top_ = 0;
    uint64_t table_ = 0; ///< where the offsets begin
};

} // namespace quarn
