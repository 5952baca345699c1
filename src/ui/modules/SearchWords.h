#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace quarn {

/// A search as people type it: words of which each must occur, in any order and letter case. Without words it
/// matches everything.
class SearchWords {
public:
    explicit SearchWords(std::string_view search);

    /// Whether all words occur; `occurs` says it of one, which is given in lower case.
    template <class Occurs>
    bool all(const Occurs& occurs) const {
        return std::all_of(words_.begin(), words_.end(), occurs);
    }

private:
    std::vector<std::string> words_;
};

} // namespace quarn
