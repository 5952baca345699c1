// The first byte picks the table; what follows is its text, and each line a descriptor's link.
#include "Fuzz.h"
#include "core/Scan.h"
#include "core/SocketList.h"
#include "core/linux/SocketHolders.h"
#include "core/linux/SocketTables.h"

#include <netinet/in.h>

using namespace sysinfo;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    std::string_view text = textOf(data + 1, size - 1);
    const platform::SocketTable table{static_cast<uint8_t>(data[0] & 1 ? IPPROTO_UDP : IPPROTO_TCP),
                                      (data[0] & 2) != 0};
    std::vector<platform::SocketEntry> entries;
    platform::parseSocketTable(text, table, entries);
    for (const auto& entry : entries) flatSocket(entry.socket);
    platform::mayHaveIdleTcpSockets(text, text);
    while (!text.empty()) platform::parseSocketLink(scutil::takeLine(text));
    return 0;
}
