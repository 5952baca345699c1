// `quarn connections` on a small captured machine: what is printed, letter by letter.
#include "cli/ConnectionsCommand.h"
#include "support/TempRoot.h"

#include <nlohmann/json.hpp>
#include <stdexcept>

namespace {

using namespace quarn;
using namespace quarn::cli;
using quarn::testing::TempRoot;

/// A line of a socket table; the addresses as the kernel writes them.
std::string line(const char* local, const char* remote, const char* state, int inode) {
    return std::string("0: ") + local + " " + remote + " " + state + " 0:0 00:0 0 0 0 " +
           std::to_string(inode) + "\n";
}

struct ConnectionsCommand : ::testing::Test {
    ConnectionsCommand() {
        const char* none = "00000000:0000";
        const char* loopback6 = "00000000000000000000000001000000:0277";
        const char* none6 = "00000000000000000000000000000000:0000";
        machine.write("proc/net/tcp", "head\n" + line("00000000:0016", none, "0A", 1) +
                                          line("0100000A:0016", "0900000A:C822", "01", 2) +
                                          line("0100000A:D431", "22D8B85D:01BB", "08", 3) +
                                          line("0100000A:1F90", "0900000A:C823", "06", 0));
        machine.write("proc/net/tcp6", "head\n" + line(loopback6, none6, "0A", 4));
        machine.write("proc/net/udp", "head\n" + line("00000000:14E9", none, "07", 5));
        machine.link("proc/812/fd/3", "socket:[1]")
            .link("proc/812/fd/4", "socket:[4]")
            .link("proc/812/fd/5", "socket:[2]");
        machine.write("proc/812/comm", "sshd\n");
        machine.link("proc/90/fd/7", "socket:[3]").link("proc/90/fd/9", "socket:[5]");
        machine.write("proc/90/comm", "Evil\033[31m\n");
    }

    std::string run(const ConnectionsOptions& options) const {
        std::string out;
        runConnections(options, machine.root(), out);
        return out;
    }

    TempRoot machine;
};

TEST_F(ConnectionsCommand, GroupsByProcess) {
    EXPECT_EQ(run({}), "6 sockets of 2 processes\n"
                       "\n"
                       "Evil\uFFFD[31m (90)\n"
                       "  UDP  *:5353          —                  —\n"
                       "  TCP  10.0.0.1:54321  93.184.216.34:443  closing (CLOSE_WAIT)\n"
                       "\n"
                       "sshd (812)\n"
                       "  TCP  *:22            —                  listening (LISTEN)\n"
                       "  TCP  10.0.0.1:22     10.0.0.9:51234     connected (ESTABLISHED)\n"
                       "  TCP  [::1]:631       —                  listening (LISTEN)\n"
                       "\n"
                       "— (of other users, of the system, or closing)\n"
                       "  TCP  10.0.0.1:8080   10.0.0.9:51235     just closed (TIME_WAIT)\n");
}

TEST_F(ConnectionsCommand, GroupsByDestination) {
    EXPECT_EQ(run({.grouping = ConnectionGrouping::destination, .search = {}, .charset = Charset::ascii}),
              "6 sockets at 6 destinations\n"
              "\n"
              "10.0.0.9:51234\n"
              "  TCP  10.0.0.1:22     sshd (812)      connected (ESTABLISHED)\n"
              "\n"
              "10.0.0.9:51235\n"
              "  TCP  10.0.0.1:8080   -               just closed (TIME_WAIT)\n"
              "\n"
              "93.184.216.34:443\n"
              "  TCP  10.0.0.1:54321  Evil?[31m (90)  closing (CLOSE_WAIT)\n"
              "\n"
              "*:22, no peer\n"
              "  TCP  *:22            sshd (812)      listening (LISTEN)\n"
              "\n"
              "*:5353, no peer\n"
              "  UDP  *:5353          Evil?[31m (90)  -\n"
              "\n"
              "[::1]:631, no peer\n"
              "  TCP  [::1]:631       sshd (812)      listening (LISTEN)\n");
}

TEST_F(ConnectionsCommand, ShowsOnlyWhatIsAskedFor) {
    const auto heading = [&](ConnectionProtocol protocol, ConnectionScope scope, const char* search) {
        const auto text = run({.protocol = protocol, .scope = scope, .search = search});
        return text.substr(0, text.find('\n'));
    };
    using enum ConnectionScope;
    EXPECT_EQ(heading(ConnectionProtocol::udp, all, ""), "1 socket of 1 process");
    EXPECT_EQ(heading(ConnectionProtocol::all, listening, ""), "2 sockets of 1 process");
    EXPECT_EQ(heading(ConnectionProtocol::all, all, "EVIL"), "2 sockets of 1 process");
    EXPECT_EQ(heading(ConnectionProtocol::all, all, "nowhere"), "No sockets.");
}

TEST_F(ConnectionsCommand, WritesNullForWhatIsAbsent) {
    const auto text = run({.form = ConnectionsOptions::Form::json, .search = {}});
    EXPECT_EQ(text.back(), '\n');
    const auto rows = nlohmann::json::parse(text);
    ASSERT_EQ(rows.size(), 6U);
    EXPECT_EQ(rows[1].dump(),
              R"({"local":null,"localPort":5353,"pid":90,"processName":"Evil\u001b[31m","proto":"UDP",)"
              R"("remote":null,"remotePort":null,"socketID":"5","state":null})");
    EXPECT_EQ(rows[5].dump(),
              R"({"local":"10.0.0.1","localPort":8080,"pid":null,"processName":null,"proto":"TCP",)"
              R"("remote":"10.0.0.9","remotePort":51235,"socketID":null,"state":"TIME_WAIT"})");
}

TEST_F(ConnectionsCommand, SaysWhenThereIsNothingToRead) {
    machine.remove("proc/net");
    EXPECT_THROW(run({}), std::runtime_error);
}

} // namespace
