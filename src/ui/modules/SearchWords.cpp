#include "ui/modules/SearchWords.h"

#include "core/Scan.h"
#include "ui/modules/LetterCase.h"

namespace quarn {

SearchWords::SearchWords(std::string_view search) {
    for (auto word = scutil::takeWord(search); !word.empty(); word = scutil::takeWord(search)) {
        std::string& lowered = words_.emplace_back(word);
        std::transform(lowered.begin(), lowered.end(), lowered.begin(), lower);
    }
}

} // namespace quarn
