#include "history/HistoryExport.h"

#include "HelperKit/ReplaceFile.h"
#include "HelperKit/Utf8.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

namespace quarn::HistoryExport {

namespace {

/// "2024-05-01T12:34:56.789Z"
std::string utcText(WallTime time) {
    using namespace std::chrono;
    const auto ms = floor<milliseconds>(time);
    const auto day = floor<days>(ms);
    const year_month_day date(day);
    const hh_mm_ss clock(ms - day);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:03}Z", static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                       clock.hours().count(), clock.minutes().count(), clock.seconds().count(),
                       clock.subseconds().count());
}

} // namespace

std::string number(std::optional<double> value, int decimals, bool decimalComma) {
    if (!value || !std::isfinite(*value)) return {};
    std::string text = fmt::format("{:.{}f}", *value, decimals); // the same in every locale
    if (decimalComma) std::replace(text.begin(), text.end(), '.', ',');
    return text;
}

std::string escapeCell(std::string_view text, std::string_view separator) {
    const bool plain = text.find_first_of("\"\n\r") == text.npos && text.find(separator) == text.npos;
    if (plain) return std::string(text);
    std::string cell = "\"";
    for (const char c : text) cell.append(c == '"' ? 2 : 1, c);
    return cell += '"';
}

std::string line(const HistorySample& sample, std::string_view separator, bool decimalComma) {
    std::string result;
    const auto add = [&](std::string_view cell) {
        if (!result.empty()) result += separator;
        result += cell;
    };
    const auto addNumber = [&](std::optional<double> value, int decimals) {
        add(number(value, decimals, decimalComma));
    };
    add(utcText(sample.time));
    for (const double percent : {sample.cpuTotal, sample.cpuUser, sample.cpuSystem}) addNumber(percent, 2);
    for (const uint64_t bytes : {sample.memUsed, sample.memSwap}) add(std::to_string(bytes));
    for (const double rate : {sample.diskRead, sample.diskWrite, sample.netRx, sample.netTx})
        addNumber(rate, 0);
    for (const auto& watts : {sample.sysWatts, sample.cpuWatts}) addNumber(watts, 2);
    for (const auto& value : {sample.gpuUtil, sample.hotspotC}) addNumber(value, 1);
    add(sample.batteryPercent ? std::to_string(*sample.batteryPercent) : std::string());
    for (const int64_t count : {sample.processCount, sample.threads}) add(std::to_string(count));
    const HistoryProc* top = busiest(sample);
    add(top ? escapeCell(repairedUtf8(top->name), separator) : std::string());
    addNumber(top ? top->cpu : 0, 1);
    return result;
}

void writeCSV(const std::filesystem::path& file, std::span<const SharedSample> samples) {
    const Format format;
    std::string text = format.header + '\n';
    for (const auto& sample : samples) text += line(*sample, format.separator, format.decimalComma) + '\n';
    replaceFile(file, text, NewFile::asUsual);
}

} // namespace quarn::HistoryExport
