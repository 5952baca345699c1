#include "inventory/ConnectionRows.h"
#include "support/Joined.h"

namespace {

using namespace quarn;
using quarn::testing::joined;
using Grouping = ConnectionView::Grouping;

Connection socket(int64_t pid, const char* name, const char* localPort, const char* remote,
                  const char* state) {
    return {"TCP", "10.0.0.1", localPort, remote, *remote == '*' ? "" : "443", state, pid, name, ""};
}

/// A browser with two connections to one server and one to another, a shell with one to the first server.
const std::vector<Connection> machine{
    socket(7, "browser", "5001", "93.184.216.34", "ESTABLISHED"),
    socket(7, "browser", "5002", "93.184.216.34", "CLOSE_WAIT"),
    socket(7, "browser", "5003", "198.51.100.7", "ESTABLISHED"),
    socket(3, "sshd", "22", "*", "LISTEN"),
    socket(-1, "", "80", "*", "LISTEN"),
};

using Lines = std::vector<std::string>;

/// "browser|7|93.184.216.34|3: 5001 5002 5003" for each group, "22" for a row by itself.
Lines outline(const ConnectionView& view, const std::vector<Connection>& sockets = machine) {
    Lines lines;
    for (const auto& row : ConnectionRows::of(sockets, view).rows) {
        const auto& shown = row.shown;
        if (row.isGroup())
            lines.push_back(joined(shown.processName, shown.pid, shown.remote, row.members) + ":");
        else if (row.parent >= 0)
            lines.back() += " " + shown.localPort;
        else
            lines.push_back(shown.localPort);
    }
    return lines;
}

TEST(ConnectionRows, GroupsOfOneStandByThemselves) {
    EXPECT_EQ(outline({.sortedBy = ConnectionKey::localPort}),
              Lines({"22", "80", "browser|7|mixed|3: 5001 5002 5003"}));
    EXPECT_EQ(outline({.grouping = Grouping::destination,
                       .sortedBy = ConnectionKey::localPort,
                       .direction = ConnectionView::Direction::descending}),
              Lines({"5003", "browser|7|93.184.216.34|2: 5002 5001", "80", "22"}));
    EXPECT_EQ(outline({.grouping = Grouping::none, .sortedBy = ConnectionKey::localPort}),
              Lines({"22", "80", "5001", "5002", "5003"}));
}

TEST(ConnectionRows, AGroupShowsWhatItsMembersShare) {
    const auto rows = ConnectionRows::of(machine, {.sortedBy = ConnectionKey::localPort}).rows;
    const auto& [group, key, parent, members, distinct, states] = rows[2];
    EXPECT_EQ(joined(group.pid, group.proto, group.local, group.localPort, group.state),
              "7|TCP|10.0.0.1|mixed|mixed");
    EXPECT_EQ(states, "2 connected, 1 closing");
    EXPECT_EQ(distinct[static_cast<size_t>(ConnectionKey::remote)], 2u);
    EXPECT_EQ(rows[3].parent, 2);

    auto shared = machine;
    shared[1].pid = 8;
    shared[1].processName = "curl";
    EXPECT_EQ(outline({.grouping = Grouping::destination, .sortedBy = ConnectionKey::localPort}, shared),
              Lines({"22", "80", "mixed|-2|93.184.216.34|2: 5001 5002", "5003"}));
}

TEST(ConnectionRows, KeysTellGroupsFromTheirMembers) {
    for (const auto grouping : {Grouping::process, Grouping::destination, Grouping::none}) {
        std::vector<std::string> keys;
        for (const auto& row : ConnectionRows::of(machine, {.grouping = grouping}).rows)
            keys.push_back(row.key);
        std::sort(keys.begin(), keys.end());
        EXPECT_EQ(std::adjacent_find(keys.begin(), keys.end()), keys.end());
    }
}

TEST(ConnectionRows, SaysWhatThereIsAndWhatAFilterLeaves) {
    EXPECT_EQ(ConnectionRows::of(machine, {}).sentence(),
              "5 sockets of 2 processes; 3 connections to the internet");
    EXPECT_EQ(ConnectionRows::of(machine, {.scope = ConnectionScope::listening}).sentence(),
              "2 of 5 sockets shown");
    EXPECT_EQ(ConnectionRows::of(machine, {.search = "SSH"}).sentence(), "1 of 5 sockets shown");
    EXPECT_EQ(ConnectionRows::of({}, {}).sentence(), "No socket is open.");
    EXPECT_EQ(ConnectionRows::of({machine[4]}, {}).sentence(), "1 socket; none is connected to the internet");
}

} // namespace
