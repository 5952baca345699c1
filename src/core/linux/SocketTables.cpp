#include "core/linux/SocketTables.h"

#include "core/Scan.h"

#include <cstring>
#include <netinet/in.h>
#include <optional>

namespace sysinfo::platform {

namespace {

struct Endpoint {
    std::array<uint8_t, 16> address{};
    uint16_t port = 0;
};

/// "0100007F:0016": words of the address as hexadecimal numbers of the machine, the port as a plain one.
std::optional<Endpoint> parseEndpoint(std::string_view text, bool isIPv6) {
    constexpr size_t wordDigits = 8;
    const size_t words = isIPv6 ? 4 : 1;
    std::string_view address = scutil::takeUntil(text, ':');
    if (address.size() != words * wordDigits) return {};
    const auto port = scutil::toNumber<uint16_t>(text, 16);
    if (!port) return {};
    Endpoint endpoint;
    endpoint.port = *port;
    auto* bytes = endpoint.address.data() + (4 - words) * sizeof(uint32_t);
    for (size_t i = 0; i < words; ++i, bytes += sizeof(uint32_t)) {
        const auto word = scutil::toNumber<uint32_t>(address.substr(i * wordDigits, wordDigits), 16);
        if (!word) return {};
        std::memcpy(bytes, &*word, sizeof *word);
    }
    return endpoint;
}

std::optional<SocketEntry> parseLine(std::string_view line, SocketTable table) {
    scutil::takeWord(line); // number of the line
    const auto local = parseEndpoint(scutil::takeWord(line), table.isIPv6);
    const auto remote = parseEndpoint(scutil::takeWord(line), table.isIPv6);
    const auto state = scutil::toNumber<uint8_t>(scutil::takeWord(line), 16);
    if (!local || !remote || !state) return {};
    for (int skipped = 0; skipped < 5; ++skipped)
        scutil::takeWord(line); // queues, timer, retries, uid, timeout
    const auto inode = scutil::toNumber<uint32_t>(scutil::takeWord(line));
    if (!inode) return {};

    SocketEntry entry;
    entry.inode = *inode;
    auto& socket = entry.socket;
    socket.id = *inode;
    socket.protocol = table.protocol;
    socket.isIPv6 = table.isIPv6;
    if (table.protocol == IPPROTO_TCP) socket.tcpState = bsdTcpState(*state);
    socket.local = local->address;
    socket.localPort = local->port;
    socket.remote = remote->address;
    socket.remotePort = remote->port;
    return entry;
}

/// The number after `key` in the line of `protocol`: "TCP: inuse 5 orphan 0 alloc 9".
std::optional<uint64_t> sockstatNumber(std::string_view text, std::string_view protocol,
                                       std::string_view key) {
    while (!text.empty()) {
        std::string_view line = scutil::takeLine(text);
        if (scutil::takeUntil(line, ':') != protocol) continue;
        while (!line.empty()) {
            const auto word = scutil::takeWord(line);
            const auto value = scutil::takeWord(line);
            if (word == key) return scutil::toNumber<uint64_t>(value);
        }
    }
    return {};
}

} // namespace

int8_t bsdTcpState(unsigned kernelState) {
    // From 1: established, syn sent, syn received, fin wait 1 and 2, time wait, closed, close wait, last ack,
    // listening, closing, a connection request, bound without being used.
    constexpr std::array<int8_t, 14> states{-1, 4, 2, 3, 6, 9, 10, 0, 5, 8, 1, 7, 3, 0};
    return kernelState < states.size() ? states[kernelState] : int8_t{-1};
}

void parseSocketTable(std::string_view text, SocketTable table, std::vector<SocketEntry>& out) {
    scutil::takeLine(text); // headings
    while (!text.empty())
        if (const auto entry = parseLine(scutil::takeLine(text), table)) out.push_back(*entry);
}

bool mayHaveIdleTcpSockets(std::string_view sockstat, std::string_view sockstat6) {
    const auto all = sockstatNumber(sockstat, "TCP", "alloc");
    const auto used = sockstatNumber(sockstat, "TCP", "inuse");
    const auto used6 = sockstatNumber(sockstat6, "TCP6", "inuse");
    return !all || !used || *all != *used + used6.value_or(0);
}

} // namespace sysinfo::platform
