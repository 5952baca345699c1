#pragma once

#include "core/SystemRoot.h"
#include "core/Text.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// What a platform must answer, in this system's terms. The folder of the platform at hand (core/linux/)
/// implements these functions; the build chooses the folder. Algorithms elsewhere in core hold no path and
/// no system call.
///
/// Functions return false, nullopt or an empty list when the reading failed; none throws.
namespace sysinfo {
class SMCConnection;
}

namespace sysinfo::platform {

/// The open files and buffers of one sampler handle. Reading through kept descriptors costs half of opening
/// each time. Belongs to one thread at a time.
class Readers;
std::shared_ptr<Readers> openReaders(const SystemRoot& root);

/// Monotonic time that no clock adjustment touches, in nanoseconds.
uint64_t monotonicRawNs();

/// Seconds that the machine has slept since it booted.
double asleepSeconds();

// ---- CPU and memory

/// Raw CPU time counters, four for each CPU that is online, in ticks of any one length.
struct CpuTicks {
    enum Kind { user, system, idle, nice };
    std::vector<uint32_t> ids;   ///< the kernel's number of each CPU; numbers may be missing
    std::vector<uint64_t> ticks; ///< 4 × ids.size(), in the order of Kind
};
/// Reads into `out`, whose storage is reused. False when the kernel gives no CPU.
bool readCpuTicks(Readers& readers, CpuTicks& out);

/// Raw memory counters: bytes, except the counts of events since boot.
struct MemoryCounters {
    uint64_t total = 0;
    uint64_t pageSize = 0;
    bool statisticsKnown = false; ///< the fields from here to swapOuts were read
    uint64_t internal = 0;        ///< anonymous, shared and reclaimable kernel memory
    uint64_t purgeable = 0;       ///< the reclaimable part of `internal`
    uint64_t external = 0;        ///< file-backed memory
    uint64_t wired = 0;
    uint64_t compressed = 0;
    uint64_t free = 0;
    uint64_t active = 0;
    uint64_t inactive = 0;
    uint64_t speculative = 0;
    uint64_t pageIns = 0;
    uint64_t pageOuts = 0;
    uint64_t faults = 0;
    uint64_t cowFaults = 0;
    uint64_t lookups = 0;
    uint64_t hits = 0;
    uint64_t compressions = 0;
    uint64_t decompressions = 0;
    uint64_t swapIns = 0;
    uint64_t swapOuts = 0;
    uint64_t swapTotal = 0;
    uint64_t swapFree = 0;
    uint32_t pressureLevel = 0; ///< 1, 2, 4; 0 unknown
    uint32_t freePercent = 0;
};
bool readMemoryCounters(Readers& readers, MemoryCounters& out);

/// Which memory counters this platform keeps at all; the others stay 0 and are shown as unknown.
struct MemoryCapabilities {
    bool cowFaults = false;
    bool objectCache = false; ///< lookups and hits
    bool speculative = false;
};
MemoryCapabilities memoryCapabilities();

/// Context switches of the whole machine since boot.
std::optional<uint64_t> contextSwitches(Readers& readers);

/// When the machine started, whole seconds since the epoch.
std::optional<uint64_t> bootTime(const SystemRoot& root);
/// Seconds since the machine started, not moved by a change of the wall clock.
std::optional<double> uptime(Readers& readers);
/// The number of averages obtained (up to 3), −1 on failure.
int loadAverage(Readers& readers, double out[3]);
bool isRoot();

/// A kernel setting by its dotted name ("kernel.hostname"), without trailing line feeds and NULs; empty, or
/// 0, when it is unknown.
std::string sysctlString(const SystemRoot& root, std::string_view name);
uint64_t sysctlU64(const SystemRoot& root, std::string_view name);

// ---- Processes

/// One process as the kernel tells it.
struct KernelProcess {
    int32_t pid = 0;
    int32_t ppid = 0;
    uint32_t uid = 0; ///< effective user
    enum class RunState : uint8_t { unknown, starting, running, sleeping, stopped, zombie };
    RunState state = RunState::unknown;
    bool measured = false; ///< memory, threads, CPU time and switches could be read
    bool ioKnown = false;  ///< diskRead and diskWrite could be read
    uint32_t threads = 0;
    Text shortName;               ///< the kernel's name, possibly cut
    Text path;                    ///< of the executable, empty when unknown
    uint64_t startTimeMicros = 0; ///< since the epoch
    uint64_t cpuTimeNs = 0;
    uint64_t memBytes = 0;
    uint64_t contextSwitches = 0; ///< of the main thread, where the kernel sums over threads nowhere
    uint64_t diskRead = 0;
    uint64_t diskWrite = 0;
    uint64_t energyNj = 0;
    uint64_t revision = 0; ///< grows whenever any field may have changed; never 0 and never reused for
                           ///< another process in the same Readers
};
/// Every process in ascending order of pid; the list is kept between calls and changes in place with the
/// next call. nullopt when the process table could not be read.
std::optional<std::span<const KernelProcess>> readProcesses(Readers& readers);

/// Start of one process in microseconds since the epoch, nullopt when there is none.
std::optional<uint64_t> processStartMicros(const SystemRoot& root, int32_t pid);
/// What a process was started with, nullopt when it may not be read; empty for threads of the kernel, and
/// changed by programs that rewrite their title. May wait for a process that is busy with its memory, so
/// never on a thread that must not wait.
std::optional<std::vector<std::string>> processCommandLine(const SystemRoot& root, int32_t pid);
/// The folder in which a process works, nullopt when it may not be read.
std::optional<std::string> processWorkingFolder(const SystemRoot& root, int32_t pid);
/// The nice value of the main thread, −20 to 19.
std::optional<int> processPriority(const SystemRoot& root, int32_t pid);

/// One run of one program: a pid that was given to another process since does not stand for it.
struct ProcessInstance {
    int32_t pid = 0;
    uint64_t startTimeMicros = 0; ///< as in KernelProcess
    uint64_t bootTime = 0; ///< seconds, by which the start was reckoned: the clock may be set meanwhile
};
enum class ProcessAnswer {
    done,
    gone,   ///< ended, or its pid is another's by now
    denied, ///< not this user's to command
    failed,
};
/// Sends a signal to that process and to no other, whatever happens to its pid meanwhile. Under a captured
/// root nothing is sent: `failed`.
ProcessAnswer signalProcess(const SystemRoot& root, const ProcessInstance& process, int signal);
/// Sets the nice value of all threads of a process.
ProcessAnswer setProcessPriority(const SystemRoot& root, const ProcessInstance& process, int nice);

/// The account name of a user, nullopt when there is none.
std::optional<std::string> userName(const SystemRoot& root, uint32_t uid);

// ---- Network links

enum LinkFlags : uint32_t {
    linkUp = 1,
    linkLoopback = 2,
    linkPointToPoint = 4,
    linkRunning = 8, ///< ready to carry packets
    linkBroadcast = 16,
    linkMulticast = 32,
};
/// The types that decide whether a link counts towards the machine's traffic.
inline constexpr uint8_t linkTypeEthernet = 6; ///< a physical wired or wireless port
inline constexpr uint8_t linkTypeCellular = 0xff;
inline constexpr uint8_t linkTypeOther = 53; ///< virtual: bridge, tunnel, veth, bond, vlan, …

struct Link {
    uint32_t index = 0;
    std::string name;
    uint32_t flags = 0; ///< LinkFlags
    uint8_t type = linkTypeOther;
    uint64_t rxBytes = 0;
    uint64_t txBytes = 0;
    uint64_t rxPackets = 0;
    uint64_t txPackets = 0;
};
/// Reads into `out`, whose storage is reused.
bool listLinks(Readers& readers, std::vector<Link>& out);

// ---- Network interfaces

struct InterfaceAddress {
    int family = 0;                                  ///< AF_INET or AF_INET6
    std::array<uint8_t, 16> bytes{};                 ///< the leading 4 for IPv4
    uint8_t prefixLength = 0;                        ///< bits of the network
    std::optional<std::array<uint8_t, 4>> broadcast; ///< of IPv4
    bool operator==(const InterfaceAddress&) const = default;
};

/// What a port is plugged into.
struct Media {
    enum class Kind : uint8_t { none, wired, wireless } kind = Kind::none;
    enum class Duplex : uint8_t { unknown, half, full } duplex = Duplex::unknown;
    enum class Connector : uint8_t { copper, other } connector = Connector::copper;
    bool negotiates = false; ///< agrees on a speed with the other end
    bool active = false;     ///< there is a link
    uint32_t speedMbps = 0;  ///< 0 unknown
};

/// A network interface as the kernel tells it.
struct Interface {
    using HardwareAddress = std::array<uint8_t, 6>;

    std::string name;
    uint32_t flags = 0; ///< LinkFlags
    int32_t mtu = 0;
    std::optional<HardwareAddress> hardwareAddress; ///< of Ethernet-like links
    std::optional<HardwareAddress> permanentAddress;
    std::vector<InterfaceAddress> addresses;
    Media media;
    uint64_t rxBytes = 0;
    uint64_t txBytes = 0;
    uint64_t rxPackets = 0;
    uint64_t txPackets = 0;
    uint64_t rxErrors = 0;
    uint64_t txErrors = 0;
    uint64_t drops = 0; ///< received and thrown away
    uint64_t collisions = 0;
};
struct InterfaceTable {
    std::span<const Interface> interfaces; ///< changes with the next call
    uint64_t revision = 0;                 ///< never 0; grows when anything but a counter may have changed
};
/// Every interface; nullopt when the kernel does not answer. Speeds are asked again only when a link changed,
/// and never of a device that sleeps.
std::optional<InterfaceTable> listInterfaces(Readers& readers);

// ---- Disks and volumes

/// Counters of one storage drive since boot.
struct DriveStats {
    uint64_t bytesRead = 0;
    uint64_t bytesWritten = 0;
    uint64_t opsRead = 0;
    uint64_t opsWritten = 0;
    uint64_t timeReadNs = 0;
    uint64_t timeWriteNs = 0;
    bool ok = false; ///< the drive told its counters
};
struct DriveCounters {
    std::string name; ///< of the block device
    DriveStats stats;
};
/// The physical drives (no loop, zram, dm, md, nbd or sr device, no partition); reads into `out`, whose
/// storage is reused.
bool readDriveCounters(Readers& readers, std::vector<DriveCounters>& out);

/// The sizes of the whole physical disks summed up. A drive without a medium is no disk.
struct DriveCapacity {
    uint64_t bytes = 0;
    uint32_t disks = 0;
};
DriveCapacity readDriveCapacity(const SystemRoot& root);

/// One physical disk as the hardware describes it; texts empty when unknown.
struct DriveDescription {
    std::string name; ///< of the block device
    std::string vendor;
    std::string product;
    std::string interconnect; ///< "NVMe", "SATA", "USB", "Virtio", …
    std::string architecture; ///< "NVMe", "SATA (AHCI)", "USB Mass Storage", "SD card reader", …
    std::string link;         ///< "PCIe 4.0 x4"
    std::string medium;       ///< "SSD", "HDD" or empty, as for a virtual machine's disk
    uint64_t size = 0;        ///< bytes
    bool internal = false;    ///< known to be built in
    bool removable = false;
};
/// The physical drives that hold a medium, in the order of their names. Asks the kernel's tables only, never
/// a device, so that none wakes.
std::vector<DriveDescription> describeDrives(const SystemRoot& root);

struct MountedVolume {
    std::string mount;
    std::string device;
    std::string fs;
    uint64_t total = 0;     ///< bytes; 0 while unknown (a server that has not answered yet, a captured root)
    uint64_t available = 0; ///< to ordinary users
    bool local = true;
};
/// The volumes a user would browse. A remote file system is asked on a thread of its own and answers with
/// the last known figures while it does not reply: a call that meets a new one waits up to 50 ms for it, no
/// other call waits for a server.
std::vector<MountedVolume> readMountedVolumes(const SystemRoot& root);

// ---- Sockets

/// One TCP or UDP socket as the kernel tells it.
struct KernelSocket {
    uint64_t id = 0;  ///< the same as long as the socket lives, 0 when it has none
    int32_t pid = -1; ///< the lowest pid that holds a descriptor of it, −1 when none may be seen
    uint16_t localPort = 0;
    uint16_t remotePort = 0;
    uint8_t protocol = 0; ///< 6 (TCP) or 17 (UDP)
    int8_t tcpState = -1; ///< BSD numbering: 0 CLOSED to 10 TIME_WAIT; −1 for UDP and for unknown states
    bool isIPv6 = false;  ///< of the IPv6 family, whatever its addresses
    /// Network order; an address of the IPv4 family stands in the last four bytes.
    std::array<uint8_t, 16> local{};
    std::array<uint8_t, 16> remote{};
    std::string_view processName; ///< empty when `pid` is −1 or its name cannot be read

    bool operator==(const KernelSocket&) const = default;
};

/// Which sockets a listing holds: those of processes that the caller may inspect, or all of the machine,
/// with those that belong to other users, to the kernel or (while closing) to nobody at the end.
enum class SocketScope : uint8_t { inspectable, all };

/// The open files of a socket listing and what it knows of processes that did not run since. Belongs to one
/// thread at a time.
class SocketReader;
std::shared_ptr<SocketReader> openSocketReader(const SystemRoot& root);

/// The sockets of the lowest pid first, each socket once; valid until the next call. nullopt when the kernel
/// tells of no socket table at all.
std::optional<std::span<const KernelSocket* const>> readSockets(SocketReader& reader, SocketScope scope);

// ---- Sensors

/// The machine's sensors behind the interface of a sensor controller; null when it offers none. Chips are
/// looked for with the first call.
std::unique_ptr<SMCConnection> openSensors(const SystemRoot& root);

} // namespace sysinfo::platform
