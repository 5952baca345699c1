#include "history/HistoryArchive.h"

#include "history/ArchiveColumns.h"
#include "history/PropertyListReader.h"
#include "history/PropertyListWriter.h"

#include <algorithm>
#include <cmath>

namespace quarn::HistoryArchive {

namespace {

constexpr int64_t mostSamples = 20'000;
constexpr int64_t mostAppSamples = 1'000'000;
constexpr size_t mostNumbers = 16'000'000;
constexpr size_t mostTexts = 100'000;
constexpr size_t longestText = 4096;
constexpr size_t mostBreaks = 2000;

using Value = PropertyListReader::Value;

/// What must be there to go on.
template <class T>
T need(std::optional<T> value) {
    if (!value) throw ArchiveColumns::Unreadable();
    return std::move(*value);
}

size_t countUnder(const Value& document, std::string_view key, int64_t most) {
    const int64_t count = need(need(document[key]).integer());
    if (count < 0 || count > most) throw ArchiveColumns::Unreadable();
    return static_cast<size_t>(count);
}

std::vector<std::string> textsUnder(const Value& document, std::string_view key) {
    std::vector<std::string> texts;
    const auto array = document[key];
    if (!array) return texts;
    for (const Value& item : need(array->items(mostTexts))) texts.push_back(need(item.string(longestText)));
    return texts;
}

std::vector<HistoryBreak> breaksIn(const Value& document) {
    std::vector<HistoryBreak> breaks;
    const auto array = document["breaks"];
    if (!array) return breaks;
    for (const Value& item : need(array->items(mostBreaks))) {
        const auto ends = need(item.numbers(2));
        if (ends.size() != 2 || !std::isfinite(ends[0]) || !std::isfinite(ends[1]))
            throw ArchiveColumns::Unreadable();
        breaks.emplace_back(ends[0], ends[1]);
    }
    return breaks;
}

/// Of a document of `bytes`, each of whose numbers must have a byte of its own, at least.
ArchiveColumns columnsIn(const Value& document, size_t bytes) {
    ArchiveColumns result;
    result.count = countUnder(document, "count", mostSamples);
    if (document["appSamples"]) result.appSamples = countUnder(document, "appSamples", mostAppSamples);
    result.deviceKeys = textsUnder(document, "deviceKeys");
    result.topNames = textsUnder(document, "topNames");
    result.appKeys = textsUnder(document, "appKeys");
    result.appNames = textsUnder(document, "appNames");
    size_t left = std::min(mostNumbers, bytes);
    for (const auto& [name, value] : need(document["columns"]).entries()) {
        auto numbers = need(value.numbers(left));
        left -= numbers.size();
        result.columns[name] = std::move(numbers);
    }
    return result;
}

} // namespace

Data encode(std::span<const SharedSample> samples, std::span<const HistoryBreak> breaks,
            const AppLiveHistory& apps) {
    ArchiveColumns columns;
    columns.setSamples(samples);
    columns.setApps(apps);

    PropertyListWriter list;
    std::vector<std::pair<std::string_view, PropertyListWriter::Ref>> entries;
    for (auto& [name, values] : columns.columns) {
        entries.emplace_back(name, list.reals(values));
        values = {}; // what has been written need not wait for the rest
    }
    std::vector<PropertyListWriter::Ref> pairs;
    for (const auto& [begin, end] : breaks) pairs.push_back(list.reals({begin, end}));
    return list.finish(list.dictionary({
        {"version", list.integer(version)},
        {"count", list.integer(static_cast<int64_t>(columns.count))},
        {"columns", list.dictionary(entries)},
        {"breaks", list.array(std::move(pairs))},
        {"deviceKeys", list.strings(columns.deviceKeys)},
        {"topNames", list.strings(columns.topNames)},
        {"appKeys", list.strings(columns.appKeys)},
        {"appNames", list.strings(columns.appNames)},
        {"appSamples", list.integer(static_cast<int64_t>(columns.appSamples))},
    }));
}

std::variant<Content, Error> decode(DataView data) {
    if (data.size() > mostBytes) return Error::unreadable;
    const auto list = PropertyListReader::open(data);
    if (!list) return Error::unreadable;
    const Value document = list->top();
    try {
        if (need(need(document["version"]).integer()) != version) return Error::unreadable;
        const ArchiveColumns columns = columnsIn(document, data.size());
        return Content{columns.samples(), breaksIn(document), columns.apps()};
    } catch (const ArchiveColumns::Unreadable&) {
        return Error::unreadable;
    }
}

} // namespace quarn::HistoryArchive
