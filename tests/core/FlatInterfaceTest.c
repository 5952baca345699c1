/* The flat interface used from plain C, on the machine at hand. Returns the line of the check that failed. */
#include "core/sc.h"

#include <math.h>
#include <string.h>
#include <unistd.h>

#define CHECK(condition)                                                                                     \
    if (!(condition)) return __LINE__

static const SCProcess noProcess;
static const SCInterface noInterface;

int quarn_flat_interface_check(void);
int quarn_flat_interface_check(void) {
    sc_sampler_destroy(NULL);
    SCSampler* sampler = sc_sampler_create();
    CHECK(sampler);

    const SCCpu cpu = sc_sample_cpu(sampler);
    CHECK(cpu.idle == 100 && cpu.total == 0 && cpu.coreCount > 0 && cpu.coreCount <= SC_MAX_CORES);
    for (uint32_t i = 0; i < SC_MAX_CORES; ++i) CHECK(cpu.cores[i] == 0 && cpu.coreSystem[i] == 0);

    const SCMem mem = sc_read_mem();
    CHECK(mem.total > 0 && mem.used > 0 && mem.used <= mem.total && mem.pageSize > 0);
    CHECK(mem.freeCount == mem.freeBytes && mem.pressureLevel > 0);

    double load[3] = {-1, -1, -1};
    CHECK(sc_load_average(load) == 3 && load[0] >= 0);
    CHECK(sc_uptime_seconds() > 0 && sc_uptime_seconds() == floor(sc_uptime_seconds()));
    CHECK(sc_is_root() == (geteuid() == 0));

    uint32_t count = 0, threads = 0;
    SCProcess* processes = sc_sample_processes(sampler, &count, &threads);
    CHECK(processes && count > 0 && threads >= count);
    const SCProcess* self = NULL;
    for (uint32_t i = 0; i < count; ++i)
        if (processes[i].pid == getpid()) self = &processes[i];
    CHECK(self && self->ppid == getppid() && self->accessible && self->cpuPercent == 0);
    CHECK(self->startTimeMicros > 0 && self->startTimeMicros == sc_process_start_time(getpid()));
    CHECK(strlen(self->name) > 0 && strlen(self->path) > 0 && self->memBytes > 0);
    CHECK(memcmp(&processes[count], &noProcess, sizeof noProcess) ==
          0); /* the extra record is always there */
    sc_free_processes(processes);
    for (int pid = -1; pid <= 1; ++pid) CHECK(sc_process_start_time(pid) == 0);

    const SCNet net = sc_sample_net(sampler);
    CHECK(net.rxRate == 0 && net.txRate == 0);
    const SCDisk disk = sc_sample_disk(sampler);
    CHECK(disk.readRate == 0 && disk.activeFraction == 0);

    SCDiskDevice devices[4];
    const int listed = sc_disk_devices(devices, 1);
    CHECK(listed >= 0 && listed <= 1 && sc_disk_devices(NULL, 4) == 0 && sc_disk_devices(devices, 0) == 0);

    SCVolume* volumes = sc_read_volumes(&count);
    CHECK(volumes);
    for (uint32_t i = 0; i < count; ++i)
        CHECK(volumes[i].total > 0 && volumes[i].used == volumes[i].total - volumes[i].freeBytes);
    sc_free_volumes(volumes);

    SCInterface* interfaces = sc_read_interfaces(&count);
    CHECK(interfaces);
    for (uint32_t i = 0; i < count; ++i)
        CHECK(strlen(interfaces[i].name) > 0 && strcmp(interfaces[i].name, "lo") != 0);
    CHECK(memcmp(&interfaces[count], &noInterface, sizeof noInterface) == 0);
    sc_free_interfaces(interfaces);

    SCSampler* nowhere = sc_sampler_create_at("/nonexistent");
    processes = sc_sample_processes(nowhere, &count, NULL);
    CHECK(processes && count == 0);
    sc_free_processes(processes);
    CHECK(sc_sample_cpu(nowhere).idle == 100 && sc_sample_cpu(nowhere).coreCount == 0);
    sc_sampler_destroy(nowhere);
    sc_sampler_destroy(sampler);

    SCSensor sensors[2];
    CHECK(sc_smc_read_temps(NULL, 2) == 0 && sc_smc_read_temps(sensors, 0) == 0);
    CHECK(sc_smc_read_temps(sensors, 2) <= 2 && sc_smc_read_keys('F', sensors, 2) <= 2);
    CHECK(isnan(sc_smc_read_float("TC0")) && isnan(sc_smc_read_float(NULL)));
    CHECK(sc_smc_key_capacity() <= 100000);

    const SCHardware hardware = sc_read_hardware();
    CHECK(hardware.ncpu > 0 && hardware.memTotal == mem.total && hardware.pageSize == mem.pageSize);
    CHECK(hardware.physCpu > 0 && hardware.physCpu <= hardware.ncpu);
    CHECK(hardware.bootTime > 0 && strncmp(hardware.kernel, "Linux ", 6) == 0);
    CHECK(strlen(hardware.arch) > 0 && strlen(hardware.hostname) > 0);
    const SCBattery battery = sc_read_battery();
    CHECK(battery.percent >= 0 && battery.percent <= 100);
    CHECK(battery.present || (battery.designCapacity == -1 && battery.cycleCount == -1));
    const SCGpuStats gpu = sc_gpu_stats();
    CHECK(gpu.device >= -1 && gpu.device <= 100 && gpu.tiler >= -1);
    const SCPower power = sc_power_sample();
    CHECK(power.cpuWatts >= 0 && power.gpuWatts >= 0 && power.sysWatts >= 0);
    uint32_t engines = 7;
    char arch[4] = "xxx";
    CHECK(!sc_ane_info(NULL, arch, sizeof arch) && arch[0] == '\0');
    arch[0] = 'x';
    CHECK(!sc_ane_info(NULL, arch, 0) && arch[0] == 'x'); /* no room, not touched */
    CHECK(sc_ane_info(&engines, arch, sizeof arch) || (engines == 0 && arch[0] == '\0'));
    CHECK(strlen(arch) < sizeof arch);
    return 0;
}
