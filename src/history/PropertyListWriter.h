#pragma once

#include "HelperKit/Data.h"

#include <string_view>
#include <utility>
#include <vector>

namespace quarn {

/// Writes a binary property list. Objects are made from the leaves up; each answers a reference, which goes
/// into the array or dictionary that holds it.
///
/// Made for columns of hundreds of thousands of numbers: it holds no tree, and equal numbers are kept once.
class PropertyListWriter {
public:
    using Ref = uint32_t;

    Ref integer(int64_t value);
    Ref real(double value);
    /// Ill-formed UTF-8 is replaced.
    Ref string(std::string_view text);
    Ref strings(const std::vector<std::string>& texts);
    Ref reals(const std::vector<double>& values);
    Ref array(std::vector<Ref> items);
    Ref dictionary(const std::vector<std::pair<std::string_view, Ref>>& entries);

    /// The document whose outermost object is `top`. The writer is done with it.
    Data finish(Ref top);

private:
    struct Container {
        Ref self = 0;
        uint8_t kind = 0;
        std::vector<Ref> items; ///< of a dictionary: all keys, then all values
    };
    /// The reference of each number by its bits, in an open hash table.
    class Numbers {
    public:
        static constexpr Ref none = UINT32_MAX;
        /// Where the reference of `bits` stands, or is to be put.
        Ref& at(uint64_t bits);

    private:
        struct Place {
            uint64_t bits = 0;
            Ref ref = none;
        };
        Place& find(uint64_t bits);
        void grow();

        std::vector<Place> places_ = std::vector<Place>(1024);
        size_t used_ = 0;
    };

    Ref begin();
    void mark(uint8_t kind, size_t count);
    void bigEndian(uint64_t value, int width);

    Data out_;
    std::vector<uint64_t> offsets_; ///< by reference; of containers only at the end
    std::vector<Container> containers_;
    Numbers numbers_;
};

} // namespace quarn
