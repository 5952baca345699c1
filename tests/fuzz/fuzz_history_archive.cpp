#include "Fuzz.h"
#include "history/HistoryArchive.h"

using namespace quarn;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto decoded = HistoryArchive::decode({data, size});
    const auto* content = std::get_if<HistoryArchive::Content>(&decoded);
    if (!content) return 0;
    // What could be read can be kept, and is then the same.
    const auto kept = [](const HistoryArchive::Content& what) {
        return HistoryArchive::encode(what.samples, what.breaks, what.apps);
    };
    const Data first = kept(*content);
    const auto again = HistoryArchive::decode(first);
    require(std::holds_alternative<HistoryArchive::Content>(again));
    require(kept(std::get<HistoryArchive::Content>(again)) == first);
    return 0;
}
