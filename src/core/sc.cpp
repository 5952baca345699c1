#include "core/sc.h"

#include "core/FlatRecords.h"
#include "core/MemStats.h"
#include "core/SCSampler.h"
#include "core/Storage.h"

#include <algorithm>
#include <cstdlib>

using sysinfo::SystemRoot;
namespace platform = sysinfo::platform;
using scutil::copyText;

SCSampler* sc_sampler_create() { return new SCSampler(SystemRoot::host()); }

SCSampler* sc_sampler_create_at(const char* root) {
    return new SCSampler(root ? SystemRoot(root) : SystemRoot::host());
}

void sc_sampler_destroy(SCSampler* sampler) { delete sampler; }

SCCpu sc_sample_cpu(SCSampler* sampler) {
    const auto stats = sampler->cpu.sample(*sampler->readers);
    SCCpu cpu{};
    cpu.total = stats.total;
    cpu.user = stats.user;
    cpu.system = stats.system;
    cpu.idle = stats.idle;
    const size_t count = std::min<size_t>(stats.perCore.size(), SC_MAX_CORES);
    cpu.coreCount = static_cast<uint32_t>(count);
    std::copy_n(stats.perCore.begin(), count, cpu.cores);
    std::copy_n(stats.perCoreSystem.begin(), count, cpu.coreSystem);
    return cpu;
}

SCNet sc_sample_net(SCSampler* sampler) { return sampler->net.sample(*sampler->readers); }

SCDisk sc_sample_disk(SCSampler* sampler) { return sampler->disk.sample(*sampler->readers); }

SCMem sc_read_mem() { return sysinfo::readMemStats(*platform::openReaders(SystemRoot::host())); }

double sc_uptime_seconds() {
    return platform::uptime(*platform::openReaders(SystemRoot::host())).value_or(0);
}

int sc_load_average(double* out) {
    return platform::loadAverage(*platform::openReaders(SystemRoot::host()), out);
}

bool sc_is_root() { return platform::isRoot(); }

SCProcess* sc_sample_processes(SCSampler* sampler, uint32_t* count, uint32_t* threads) {
    const auto& processes = sampler->processes.sample(*sampler->readers);
    if (threads) *threads = sampler->processes.totalThreads();
    return scutil::flatRecords<SCProcess>(processes, count,
                                          [](const sysinfo::ProcessInfo& info, SCProcess& out) {
                                              out.pid = info.pid;
                                              out.ppid = info.ppid;
                                              out.uid = info.uid;
                                              copyText(out.name, info.name);
                                              copyText(out.user, info.user);
                                              copyText(out.state, info.state);
                                              copyText(out.path, info.path);
                                              out.cpuPercent = info.cpuPercent;
                                              out.memBytes = info.memBytes;
                                              out.threads = info.threads;
                                              out.cpuTimeNs = info.cpuTimeNs;
                                              out.diskRead = info.diskRead;
                                              out.diskWrite = info.diskWrite;
                                              out.contextSwitches = info.contextSwitches;
                                              out.energyNj = info.energyNj;
                                              out.energyKnown = info.energyKnown;
                                              out.startTime = info.startTime;
                                              out.startTimeMicros = info.startTimeMicros;
                                              out.accessible = info.accessible;
                                              out.ioKnown = info.ioKnown;
                                          });
}

void sc_free_processes(SCProcess* processes) { std::free(processes); }

uint64_t sc_process_start_time(int32_t pid) {
    if (pid < 2) return 0;
    return platform::processStartMicros(SystemRoot::host(), pid).value_or(0);
}

int sc_disk_devices(SCDiskDevice* out, int max) { return sysinfo::diskDevices(SystemRoot::host(), out, max); }

SCVolume* sc_read_volumes(uint32_t* count) {
    const auto volumes = sysinfo::readVolumes(SystemRoot::host());
    return scutil::flatRecords<SCVolume>(volumes, count, [](const sysinfo::VolumeInfo& info, SCVolume& out) {
        copyText(out.mount, info.mount);
        copyText(out.device, info.device);
        copyText(out.fs, info.fs);
        out.total = info.total;
        out.freeBytes = info.freeBytes;
        out.used = info.used;
        out.local = info.local;
    });
}

void sc_free_volumes(SCVolume* volumes) { std::free(volumes); }
