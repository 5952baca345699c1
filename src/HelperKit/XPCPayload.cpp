#include "HelperKit/XPCPayload.h"

#include <nlohmann/json.hpp>

#include <concepts>
#include <tuple>
#include <utility>

namespace quarn::XPCPayload {

namespace {

using nlohmann::json;

template <class Record, class Value>
constexpr auto field(const char* key, Value Record::*member) {
    return std::pair(key, member);
}

/// For each record its keys and where their values are.
template <class Value>
constexpr std::tuple<> fields;

template <>
constexpr auto fields<HelperProcess> = std::tuple(
    field("pid", &HelperProcess::pid), field("ppid", &HelperProcess::ppid), field("uid", &HelperProcess::uid),
    field("name", &HelperProcess::name), field("user", &HelperProcess::user),
    field("state", &HelperProcess::state), field("path", &HelperProcess::path),
    field("cpuPercent", &HelperProcess::cpuPercent), field("memBytes", &HelperProcess::memBytes),
    field("threads", &HelperProcess::threads), field("cpuTimeNs", &HelperProcess::cpuTimeNs),
    field("startTime", &HelperProcess::startTime), field("startTimeMicros", &HelperProcess::startTimeMicros),
    field("accessible", &HelperProcess::accessible), field("diskRead", &HelperProcess::diskRead),
    field("diskWrite", &HelperProcess::diskWrite), field("contextSwitches", &HelperProcess::contextSwitches),
    field("energyNj", &HelperProcess::energyNj));

template <>
constexpr auto fields<HelperProcessList> = std::tuple(field("processes", &HelperProcessList::processes),
                                                      field("totalThreads",
                                                            &HelperProcessList::totalThreads));

template <>
constexpr auto fields<SocketRecord> =
    std::tuple(field("pid", &SocketRecord::pid), field("name", &SocketRecord::name),
               field("proto", &SocketRecord::proto), field("ipVersion", &SocketRecord::ipVersion),
               field("local", &SocketRecord::local), field("localPort", &SocketRecord::localPort),
               field("remote", &SocketRecord::remote), field("remotePort", &SocketRecord::remotePort),
               field("tcpState", &SocketRecord::tcpState), field("socketID", &SocketRecord::socketID));

template <>
constexpr auto fields<HelperPower> =
    std::tuple(field("sampledAt", &HelperPower::sampledAt), field("sysWatts", &HelperPower::sysWatts),
               field("cpuWatts", &HelperPower::cpuWatts), field("gpuWatts", &HelperPower::gpuWatts),
               field("aneWatts", &HelperPower::aneWatts), field("dramWatts", &HelperPower::dramWatts),
               field("available", &HelperPower::available), field("eFreqMHz", &HelperPower::eFreqMHz),
               field("pFreqMHz", &HelperPower::pFreqMHz), field("gpuFreqMHz", &HelperPower::gpuFreqMHz),
               field("combinedWatts", &HelperPower::combinedWatts), field("source", &HelperPower::source));

template <>
constexpr auto
    fields<VersionInfo> = std::tuple(field("major", &VersionInfo::major), field("minor", &VersionInfo::minor),
                                     field("patch", &VersionInfo::patch), field("build", &VersionInfo::build),
                                     field("buildDate", &VersionInfo::buildDate));

template <>
constexpr auto fields<CommandResult> = std::tuple(field("stdout", &CommandResult::stdout),
                                                  field("stderr", &CommandResult::stderr),
                                                  field("exitCode", &CommandResult::exitCode),
                                                  field("timedOut", &CommandResult::timedOut),
                                                  field("launchError", &CommandResult::launchError),
                                                  field("outputTruncated", &CommandResult::outputTruncated));

template <class Value>
concept Record = std::tuple_size_v<std::remove_const_t<decltype(fields<Value>)>>
!= 0;

/// Calls `use(key, value)` for each field of `record`.
template <class Record, class Use>
void forEachField(Record& record, Use use) {
    std::apply([&](const auto&... each) { (use(each.first, record.*each.second), ...); },
               fields<std::remove_const_t<Record>>);
}

template <class Value>
json toJSON(const Value& value) {
    return value;
}

template <Record Value>
json toJSON(const Value& record);

template <class Value>
json toJSON(const std::vector<Value>& values) {
    json array = json::array();
    for (const auto& value : values) array.push_back(toJSON(value));
    return array;
}

template <class Value>
void put(json& object, const char* key, const Value& value) {
    object[key] = toJSON(value);
}

template <class Value>
void put(json& object, const char* key, const std::optional<Value>& value) {
    if (value) object[key] = toJSON(*value);
}

template <Record Value>
json toJSON(const Value& record) {
    json object = json::object();
    forEachField(record, [&](const char* key, const auto& value) { put(object, key, value); });
    return object;
}

// Each `read` stores what `document` says into `value` and returns false when it says no such thing.

bool read(const json& document, bool& value) {
    if (document.is_boolean()) value = document.get<bool>();
    return document.is_boolean();
}

template <std::integral Integer>
bool read(const json& document, Integer& value) {
    const auto accept = [&value](auto number) {
        if (std::in_range<Integer>(number)) value = static_cast<Integer>(number);
        return std::in_range<Integer>(number);
    };
    if (document.is_number_unsigned()) return accept(document.get<uint64_t>());
    return document.is_number_integer() && accept(document.get<int64_t>());
}

bool read(const json& document, double& value) {
    if (document.is_number()) value = document.get<double>();
    return document.is_number();
}

bool read(const json& document, std::string& value) {
    if (document.is_string()) value = document.get_ref<const std::string&>();
    return document.is_string();
}

template <class Value>
bool read(const json& document, std::vector<Value>& values);

template <Record Value>
bool read(const json& document, Value& record);

template <class Value>
bool read(const json& document, std::optional<Value>& value) {
    return document.is_null() || read(document, value.emplace());
}

template <class Value>
bool read(const json& document, std::vector<Value>& values) {
    if (!document.is_array()) return false;
    values.reserve(document.size());
    for (const auto& element : document)
        if (!read(element, values.emplace_back())) return false;
    return true;
}

template <Record Value>
bool read(const json& document, Value& record) {
    static const json absent;
    bool complete = document.is_object();
    forEachField(record, [&](const char* key, auto& value) {
        if (!complete) return;
        const auto entry = document.find(key);
        complete = read(entry == document.end() ? absent : *entry, value);
    });
    return complete;
}

} // namespace

template <class Record>
Data encode(const Record& record) {
    const auto text = toJSON(record).dump(-1, ' ', false, json::error_handler_t::replace);
    return {text.begin(), text.end()};
}

template <class Record>
std::optional<Record> decode(DataView data) {
    const auto document = json::parse(data.begin(), data.end(), nullptr, /*allow_exceptions=*/false);
    Record record;
    if (document.is_discarded() || !read(document, record)) return std::nullopt;
    return record;
}

template Data encode(const HelperProcess&);
template Data encode(const HelperProcessList&);
template Data encode(const SocketRecord&);
template Data encode(const std::vector<SocketRecord>&);
template Data encode(const HelperPower&);
template Data encode(const VersionInfo&);
template Data encode(const CommandResult&);

template std::optional<HelperProcess> decode(DataView);
template std::optional<HelperProcessList> decode(DataView);
template std::optional<SocketRecord> decode(DataView);
template std::optional<std::vector<SocketRecord>> decode(DataView);
template std::optional<HelperPower> decode(DataView);
template std::optional<VersionInfo> decode(DataView);
template std::optional<CommandResult> decode(DataView);

} // namespace quarn::XPCPayload
