#include "inventory/ConnectionRows.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace quarn {

namespace {

using Presentation = ConnectionPresentation;

struct Field {
    ConnectionKey key;
    std::string Connection::*text;
};
constexpr Field fields[]{
    {ConnectionKey::process, &Connection::processName}, {ConnectionKey::proto, &Connection::proto},
    {ConnectionKey::local, &Connection::local},         {ConnectionKey::localPort, &Connection::localPort},
    {ConnectionKey::remote, &Connection::remote},       {ConnectionKey::remotePort, &Connection::remotePort},
    {ConnectionKey::state, &Connection::state},
};

/// "8 connected, 2 listening", the most frequent first.
std::string statesOf(const std::vector<Connection>& connections) {
    std::vector<std::pair<size_t, std::string_view>> counts;
    for (const Connection& each : connections) {
        const auto meaning =
            each.state.empty() ? std::string_view("without a state") : Presentation::stateMeaning(each.state);
        const auto found = std::find_if(counts.begin(), counts.end(),
                                        [&](const auto& count) { return count.second == meaning; });
        found == counts.end() ? void(counts.emplace_back(1, meaning)) : void(++found->first);
    }
    std::stable_sort(counts.begin(), counts.end(),
                     [](const auto& a, const auto& b) { return a.first > b.first; });
    std::string text;
    for (const auto& [count, meaning] : counts)
        text.append(text.empty() ? "" : ", ").append(std::to_string(count)).append(" ").append(meaning);
    return text;
}

/// One group, whatever it is grouped by.
void append(std::vector<ConnectionRow>& rows, ConnectionDestination group) {
    if (group.rows.size() == 1) {
        Connection& only = group.rows.front();
        std::string key = only.identity();
        rows.push_back({std::move(only), std::move(key)});
        return;
    }
    ConnectionRow head;
    head.key = "group " + group.key;
    head.members = group.rows.size();
    head.states = statesOf(group.rows);
    for (const auto& [key, text] : fields) {
        std::unordered_set<std::string_view> values;
        for (const Connection& row : group.rows) values.insert(row.*text);
        head.distinct[static_cast<size_t>(key)] = values.size();
        head.shown.*text =
            values.size() == 1 ? group.rows.front().*text : std::string(ConnectionDestination::mixed);
    }
    std::unordered_set<int64_t> pids;
    for (const Connection& row : group.rows) pids.insert(row.pid);
    head.distinct[static_cast<size_t>(ConnectionKey::pid)] = pids.size();
    head.shown.pid = pids.size() == 1 ? group.rows.front().pid : ConnectionRow::mixedPids;
    const int parent = static_cast<int>(rows.size());
    rows.push_back(std::move(head));
    for (Connection& row : group.rows) {
        std::string key = row.identity();
        rows.push_back({std::move(row), std::move(key), parent});
    }
}

std::string counted(size_t count, const char* one, const char* many) {
    return std::to_string(count) + (count == 1 ? one : many);
}

} // namespace

ConnectionRows ConnectionRows::of(const std::vector<Connection>& connections, const ConnectionView& view) {
    ConnectionRows result;
    result.sockets = connections.size();
    std::vector<Connection> wanted;
    std::unordered_set<int64_t> processes;
    for (const Connection& connection : connections) {
        if (connection.pid >= 0) processes.insert(connection.pid);
        if (Presentation::matches(connection, ConnectionScope::internet, ConnectionProtocol::all, {}))
            ++result.internet;
        if (Presentation::matches(connection, view.scope, view.protocol, view.search))
            wanted.push_back(connection);
    }
    result.processes = processes.size();
    result.shown = wanted.size();
    result.rows.reserve(wanted.size() * 2);

    const bool ascending = view.direction == ConnectionView::Direction::ascending;
    switch (view.grouping) {
    case ConnectionView::Grouping::none:
        for (auto& row : Presentation::sorted(std::move(wanted), view.sortedBy, ascending)) {
            std::string key = row.identity();
            result.rows.push_back({std::move(row), std::move(key)});
        }
        break;
    case ConnectionView::Grouping::process:
        for (auto& process : Presentation::grouped(std::move(wanted), view.sortedBy, ascending))
            append(result.rows, {std::to_string(process.pid), std::move(process.rows)});
        break;
    case ConnectionView::Grouping::destination:
        for (auto& group : Presentation::groupedByDestination(std::move(wanted), view.sortedBy, ascending))
            append(result.rows, std::move(group));
        break;
    }
    return result;
}

std::string ConnectionRows::sentence() const {
    if (sockets == 0) return "No socket is open.";
    if (shown < sockets)
        return std::to_string(shown) + " of " + counted(sockets, " socket", " sockets") + " shown";
    std::string text = counted(sockets, " socket", " sockets");
    if (processes > 0) text += " of " + counted(processes, " process", " processes");
    text += "; ";
    return text + (internet == 0 ? "none is connected to the internet"
                                 : counted(internet, " connection", " connections") + " to the internet");
}

} // namespace quarn
