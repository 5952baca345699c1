#pragma once

#include "HelperKit/WireRecords.h"
#include "core/CpuSampler.h"
#include "core/Text.h"
#include "core/sc.h"
#include "monitor/SharedList.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace quarn {

using sysinfo::CpuStats;
using sysinfo::Text;

/// Wall-clock time of a sample, for people and for history.
using WallTime = std::chrono::system_clock::time_point;

/// Paging, faults and switches per second. A rate whose counter this platform does not keep is absent where
/// the type allows and otherwise listed by platform::memoryCapabilities().
struct SystemRates {
    double pageIn = 0; ///< pages
    double pageOut = 0;
    double swapIn = 0; ///< pages
    double swapOut = 0;
    double faults = 0;
    double cowFaults = 0;
    double compressions = 0; ///< pages
    double decompressions = 0;
    double contextSwitches = 0; ///< of the whole machine
    std::optional<double> cacheHitRatio;
};

/// One process with its rates since the process list before.
struct ProcInfo {
    int64_t pid = 0;
    int64_t ppid = 0;
    int64_t uid = 0;
    Text name;
    Text user;
    Text state; ///< "Starting", "Running", "Sleeping", "Stopped", "Zombie" or "—"
    Text path;
    double cpuPercent = 0; ///< 100 means one fully used core
    uint64_t memBytes = 0;
    int64_t threads = 0;
    uint64_t cpuTimeNs = 0;
    std::optional<uint64_t> startTime;       ///< seconds since the epoch
    std::optional<uint64_t> startTimeMicros; ///< with `pid` the identity of a process instance
    bool accessible = false;                 ///< the process's details could be read
    uint64_t diskRead = 0;                   ///< cumulative bytes
    uint64_t diskWrite = 0;
    double diskReadRate = 0; ///< bytes per second
    double diskWriteRate = 0;
    uint64_t contextSwitches = 0; ///< cumulative, of the main thread
    double cswRate = 0;           ///< per second
    std::optional<uint64_t> energyNj;
    std::optional<double> watts;
    bool ioKnown = false; ///< the disk figures could be read; otherwise they are shown as unknown
};

struct Battery {
    bool present = false;
    bool charging = false;
    bool onAC = false;
    int64_t percent = 0; ///< −1 unknown, as in the five below
    int64_t timeToEmptyMin = -1;
    int64_t timeToFullMin = -1;
    int64_t cycleCount = -1;
    int64_t designCapacity = -1;  ///< mAh
    int64_t nominalCapacity = -1; ///< mAh when full
    int64_t voltage_mV = 0;
    int64_t amperage_mA = 0;
    double temperatureC = 0;
    std::string health;
};

struct NetInterface {
    std::string name;
    std::string mac;
    std::string addrs; ///< joined with ", ", IPv4 first
    bool up = false;
    uint64_t rxBytes = 0;
    uint64_t txBytes = 0;
    uint64_t rxPackets = 0;
    uint64_t txPackets = 0;
    uint64_t rxErrors = 0;
    uint64_t txErrors = 0;
    uint64_t drops = 0;
    uint64_t collisions = 0;
    int64_t mtu = 0;
    int64_t linkSpeedMbps = 0; ///< 0 unknown
    std::string media;
    std::string netmask;
    std::string broadcast;
    bool loopback = false;
    bool pointToPoint = false;
    bool multicast = false;
    double rxRate = 0; ///< bytes per second
    double txRate = 0;
};

struct DiskDevice {
    std::string bsd; ///< kernel name of the block device
    std::string name;
    std::string interconnect;
    std::string medium; ///< "SSD", "HDD" or empty
    std::string architecture;
    std::string link;
    uint64_t size = 0;
    bool isInternal = false;
    bool removable = false;
    double readRate = 0; ///< bytes per second
    double writeRate = 0;
    uint64_t readBytes = 0;
    uint64_t writeBytes = 0;
};

/// How a disk is described to people: "Internal disk", "External disk", "Flash drive", "Disk image" or
/// "Memory card".
std::string_view diskKind(const DiskDevice& disk);

struct Volume {
    std::string mount;
    std::string device;
    std::string fs;
    uint64_t total = 0;
    uint64_t free = 0; ///< available to ordinary users
    uint64_t used = 0;
    bool local = true;
};

struct Sensor {
    std::string name; ///< four key characters
    double value = 0;
};

/// The machine itself; texts empty and numbers 0 when unknown.
struct Hardware {
    std::string model;
    std::string cpuBrand;
    std::string arch;
    std::string osVersion;
    std::string osBuild;
    std::string kernel;
    std::string hostname;
    std::string gpuName;
    int64_t ncpu = 0;
    int64_t physCpu = 0;
    int64_t perfCores = 0;
    int64_t effCores = 0;
    int64_t gpuCores = 0;
    uint64_t memTotal = 0;
    uint64_t l2Cache = 0;
    uint64_t l2CacheE = 0;
    uint64_t l1iCache = 0;
    uint64_t l1dCache = 0;
    uint64_t pageSize = 0;
    bool hvSupport = false;
    bool vmPresent = false;
    std::optional<uint64_t> bootTime; ///< seconds since the epoch
    int64_t aneCores = 0;
    std::string aneArch;
    bool hasBattery = false;
    bool isAppleSilicon = false;
    uint64_t l3Cache = 0;
    uint64_t baseClockHz = 0;
};

enum class ThermalState { unknown, nominal, fair, serious, critical };

/// "nominal", "elevated", "serious", "critical"; otherwise "unknown".
std::string_view thermalStateName(ThermalState state);

/// One complete sample of the machine. A value: copying shares the lists and costs no list copy.
struct Snapshot {
    CpuStats cpu;
    SCPower power{};
    bool powerStale = false;
    std::string powerSource;
    std::optional<HelperPower> freq;
    std::optional<double> dcInWatts;
    SharedList<Sensor> temps;
    SharedList<Sensor> powerKeys;
    SharedList<Sensor> voltageKeys;
    SharedList<Sensor> currentKeys;
    SharedList<Sensor> fanKeys;
    SCMem mem{};
    SCDisk disk{};
    SharedList<DiskDevice> disks;
    int64_t disksGeneration = 0;
    SharedList<NetInterface> interfaces;
    int64_t interfacesGeneration = 0;
    SystemRates rates;
    SCNet net{}; ///< rates smoothed over the plan's network window
    SCGpuStats gpu{};
    std::optional<Battery> battery;
    SharedList<ProcInfo> processes; ///< in ascending order of pid
    int64_t totalThreads = 0;
    std::vector<double> loadAvg; ///< 1, 5 and 15 minutes
    double uptime = 0;           ///< seconds
    int64_t generation = 0;
    int64_t processGeneration = 0;
    WallTime timestamp{}; ///< when the tick began
    ThermalState thermalState = ThermalState::unknown;
    bool isAppleSilicon = false;
};

} // namespace quarn
