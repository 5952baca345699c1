#pragma once

#include "core/platform.h"
#include "core/sc.h"

#include <memory>
#include <optional>
#include <span>

namespace sysinfo {

using ::formatHost;
using platform::SocketScope;

/// `SCSocket::pid` of a socket whose process is not known.
inline constexpr int32_t noProcess = -1;

/// The flat record of a socket. An IPv6 socket that talks to an IPv4 peer, or is bound to an IPv4-mapped
/// address, shows both ends in IPv4 form and stays `ipVersion` 6.
SCSocket flatSocket(const platform::KernelSocket& socket);

/// Lists the sockets of one machine again and again. Only processes that ran since the last listing have
/// their descriptors looked at anew, which makes a repeated listing several times cheaper than a first one.
/// Belongs to one thread at a time.
///
/// Only the network namespace of the caller is listed: sockets of containers with a network of their own are
/// not in its tables.
class SocketLister {
public:
    explicit SocketLister(const SystemRoot& root) : reader_(platform::openSocketReader(root)) {}

    /// The sockets of now in ascending order of pid; with `SocketScope::all` those without a known process
    /// follow. Valid until the next call; `flatSocket` makes the record of one. nullopt when the kernel tells
    /// of no socket table at all.
    std::optional<std::span<const platform::KernelSocket* const>> list(SocketScope scope) {
        return platform::readSockets(*reader_, scope);
    }

private:
    std::shared_ptr<platform::SocketReader> reader_;
};

} // namespace sysinfo
