#include "cli/ConnectionsText.h"

#include "core/Scan.h"
#include "inventory/ConnectionPresentation.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>

namespace quarn::cli {

namespace {

using Presentation = ConnectionPresentation;

constexpr int longestName = 64;
constexpr std::string_view gutter = "  ";
constexpr size_t usualCells = 64; ///< bytes of the cells of one row

/// "10.0.0.1:22", "[fe80::1]:22"; "*" stands for every address, and for a port that is none.
void appendEndpoint(std::string& out, std::string_view host, std::string_view port) {
    if (host.find(':') != std::string_view::npos)
        out.append("[").append(host).append("]");
    else
        out.append(host.empty() ? "*" : host);
    out.append(":").append(port.empty() ? "*" : port);
}

std::string counted(size_t count, std::string_view one, std::string_view many) {
    return std::to_string(count).append(" ").append(count == 1 ? one : many);
}

bool hasProcess(const Connection& row) { return row.pid >= 0; }

} // namespace

ConnectionsText::ConnectionsText(ConnectionGrouping grouping, Charset charset, size_t expectedRows)
    : grouping_(grouping), charset_(charset) {
    cells_.reserve(expectedRows * usualCells);
    rows_.reserve(expectedRows);
}

void ConnectionsText::add(const Connection& row) {
    Row& place = rows_.emplace_back();
    place.group = groupOf(row);
    place.localPort = scutil::toNumber<uint32_t>(row.localPort).value_or(0);
    place.at = cells_.size();
    size_t start = cells_.size();
    const auto endCell = [&] {
        return static_cast<uint32_t>(cells_.size() - std::exchange(start, cells_.size()));
    };

    cells_ += row.proto;
    place.protoLength = endCell();
    appendEndpoint(cells_, row.local, row.localPort);
    place.localLength = endCell();
    if (grouping_ == ConnectionGrouping::process && row.hasPeer()) {
        appendEndpoint(cells_, row.remote, row.remotePort);
        place.otherWidth = place.otherLength = endCell();
    } else {
        const auto text =
            grouping_ == ConnectionGrouping::process ? std::string(unknown()) : processLabel(row);
        cells_ += text;
        place.otherLength = endCell();
        place.otherWidth = static_cast<uint32_t>(cellsOf(text, Charset::utf8));
    }
    cells_ += row.state.empty() ? std::string(unknown()) : Presentation::stateText(row.state);
    place.stateLength = endCell();
}

uint32_t ConnectionsText::groupOf(const Connection& row) {
    const bool byProcess = grouping_ == ConnectionGrouping::process;
    // Rows of one process mostly follow each other.
    if (byProcess && !groups_.empty() && groups_[latestGroup_].pid == row.pid) return latestGroup_;
    auto key = byProcess ? std::to_string(row.pid) : row.destinationKey();
    const auto next = static_cast<uint32_t>(groups_.size());
    const auto [group, isNew] = groupsByKey_.try_emplace(std::move(key), next);
    if (isNew) groups_.push_back(row);
    return latestGroup_ = group->second;
}

bool ConnectionsText::isPlaced(const Connection& row) const {
    return grouping_ == ConnectionGrouping::process ? hasProcess(row) : row.hasPeer();
}

std::vector<uint32_t> ConnectionsText::groupRanks() const {
    std::vector<uint32_t> order(groups_.size());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(), [&](uint32_t left, uint32_t right) {
        const auto &a = groups_[left], &b = groups_[right];
        const bool placed = isPlaced(a);
        if (placed != isPlaced(b)) return placed;
        using enum ConnectionKey;
        if (grouping_ == ConnectionGrouping::process) return Presentation::compare(a, b, process) < 0;
        const auto hosts = Presentation::compare(a, b, placed ? remote : local);
        return hosts != 0 ? hosts < 0 : Presentation::compare(a, b, placed ? remotePort : localPort) < 0;
    });
    std::vector<uint32_t> ranks(order.size());
    for (uint32_t rank = 0; rank < order.size(); ++rank) ranks[order[rank]] = rank;
    return ranks;
}

/// The rows in the order of the listing; equal ones as they came.
std::vector<uint32_t> ConnectionsText::order() const {
    const auto ranks = groupRanks();
    std::vector<std::pair<uint64_t, uint32_t>> keys(rows_.size());
    for (uint32_t i = 0; i < rows_.size(); ++i)
        keys[i] = {uint64_t{ranks[rows_[i].group]} << 32 | rows_[i].localPort, i};
    std::sort(keys.begin(), keys.end());
    std::vector<uint32_t> result(keys.size());
    std::transform(keys.begin(), keys.end(), result.begin(), [](const auto& key) { return key.second; });
    return result;
}

void ConnectionsText::appendTo(std::string& out) const {
    if (rows_.empty()) {
        out += "No sockets.\n";
        return;
    }
    size_t localWidth = 0, otherWidth = 0;
    for (const auto& row : rows_) {
        localWidth = std::max<size_t>(localWidth, row.localLength);
        otherWidth = std::max<size_t>(otherWidth, row.otherWidth);
    }
    out += summary();
    out.reserve(out.size() + cells_.size() + rows_.size() * (localWidth + otherWidth) +
                groups_.size() * usualCells);

    std::optional<uint32_t> group;
    for (const uint32_t index : order()) {
        const auto& row = rows_[index];
        if (group != row.group) out.append("\n").append(heading(groups_[row.group])).append("\n");
        group = row.group;
        const char* cell = cells_.data() + row.at;
        const auto append = [&](uint32_t length, size_t padding) {
            out.append(gutter).append(cell, length).append(padding, ' ');
            cell += length;
        };
        append(row.protoLength, 0);
        append(row.localLength, localWidth - row.localLength);
        append(row.otherLength, otherWidth - row.otherWidth);
        append(row.stateLength, 0);
        out += '\n';
    }
}

std::string ConnectionsText::summary() const {
    const std::string sockets = counted(rows_.size(), "socket", "sockets");
    if (grouping_ == ConnectionGrouping::destination)
        return sockets + " at " + counted(groups_.size(), "destination", "destinations") + "\n";
    const auto processes = std::count_if(groups_.begin(), groups_.end(), hasProcess);
    return sockets + " of " + counted(static_cast<size_t>(processes), "process", "processes") + "\n";
}

std::string ConnectionsText::heading(const Connection& row) const {
    if (grouping_ == ConnectionGrouping::process)
        return processLabel(row) + (hasProcess(row) ? "" : " (of other users, of the system, or closing)");
    std::string text;
    if (row.hasPeer()) {
        appendEndpoint(text, row.remote, row.remotePort);
        return text;
    }
    appendEndpoint(text, row.local, row.localPort);
    return text + ", no peer";
}

/// "firefox (1234)". The only text of a row that strangers choose.
std::string ConnectionsText::processLabel(const Connection& row) const {
    if (!hasProcess(row)) return std::string(unknown());
    const auto name = row.processName.empty() ? unknown() : std::string_view(row.processName);
    return fitted(name, longestName, charset_) + " (" + std::to_string(row.pid) + ")";
}

} // namespace quarn::cli
