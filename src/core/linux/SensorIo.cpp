#include "core/linux/SensorIo.h"

#include "core/Scan.h"
#include "core/linux/Files.h"
#include "core/platform.h"

#include <array>
#include <cerrno>
#include <fcntl.h>

namespace sysinfo::platform {

namespace {

long readKept(KeptAttribute& attribute, std::span<char> buffer) {
    if (!attribute.fd) attribute.fd = openForReading(attribute.path.c_str());
    if (!attribute.fd) return -1;
    long got = 0;
    do {
        got = ::pread(attribute.fd.get(), buffer.data(), buffer.size(), 0);
    } while (got < 0 && errno == EINTR);
    if (got < 0) attribute.fd.reset();
    return got;
}

bool writeAttribute(const std::string& path, std::string_view text) {
    const scutil::UniqueFd fd(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    return fd && ::write(fd.get(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

} // namespace

SensorIo SensorIo::forRoot(const SystemRoot& root) {
    SensorIo io;
    io.read = readKept;
    io.nowNs = monotonicRawNs;
    if (root.isHost() && isRoot()) io.write = writeAttribute;
    return io;
}

std::optional<std::string_view> readText(const SensorIo& io, KeptAttribute& attribute,
                                         std::span<char> buffer) {
    if (attribute.path.empty()) return {};
    const long got = io.read(attribute, buffer);
    if (got < 0) return {};
    return scutil::trimmed({buffer.data(), static_cast<size_t>(got)});
}

std::optional<long long> readInteger(const SensorIo& io, KeptAttribute& attribute) {
    std::array<char, 32> buffer;
    const auto text = readText(io, attribute, buffer);
    return text ? scutil::toNumber<long long>(*text) : std::nullopt;
}

} // namespace sysinfo::platform
