// The answer of the kernel to one request for a socket table; the sequence number is that of the seeds.
#include "core/SocketList.h"
#include "core/linux/SocketDiag.h"

#include <cstddef>
#include <netinet/in.h>

using namespace sysinfo;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<platform::SocketEntry> entries;
    platform::parseSocketDump({reinterpret_cast<const char*>(data), size}, 1, IPPROTO_TCP, entries);
    for (const auto& entry : entries) flatSocket(entry.socket);
    return 0;
}
