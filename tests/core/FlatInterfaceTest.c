/* The flat interface used from plain C, on the machine at hand. Returns the number of the check that failed.
 */
#include "core/sc.h"

#include <math.h>
#include <string.h>
#include <unistd.h>

int quarn_flat_interface_check(void);

int quarn_flat_interface_check(void) {
    sc_sampler_destroy(NULL);
    SCSampler* sampler = sc_sampler_create();
    if (!sampler) return 1;

    const SCCpu cpu = sc_sample_cpu(sampler);
    if (cpu.idle != 100 || cpu.total != 0 || cpu.coreCount == 0 || cpu.coreCount > SC_MAX_CORES) return 2;
    for (uint32_t i = 0; i < SC_MAX_CORES; ++i)
        if (cpu.cores[i] != 0 || cpu.coreSystem[i] != 0) return 3;

    const SCMem mem = sc_read_mem();
    if (mem.total == 0 || mem.used == 0 || mem.used > mem.total || mem.pageSize == 0) return 4;
    if (mem.freeCount != mem.freeBytes || mem.pressureLevel == 0) return 5;

    double load[3] = {-1, -1, -1};
    if (sc_load_average(load) != 3 || load[0] < 0) return 6;
    if (sc_uptime_seconds() <= 0 || sc_uptime_seconds() != floor(sc_uptime_seconds())) return 7;
    if (sc_is_root() != (geteuid() == 0)) return 8;

    uint32_t count = 0, threads = 0;
    SCProcess* processes = sc_sample_processes(sampler, &count, &threads);
    if (!processes || count == 0 || threads < count) return 9;
    const SCProcess* self = NULL;
    for (uint32_t i = 0; i < count; ++i)
        if (processes[i].pid == getpid()) self = &processes[i];
    if (!self || self->ppid != getppid() || !self->accessible || self->cpuPercent != 0) return 10;
    if (self->startTimeMicros == 0 || self->startTimeMicros != sc_process_start_time(getpid())) return 11;
    if (strlen(self->name) == 0 || strlen(self->path) == 0 || self->memBytes == 0) return 12;
    SCProcess zero;
    memset(&zero, 0, sizeof zero);
    if (memcmp(&processes[count], &zero, sizeof zero) != 0) return 13; /* the extra record is always there */
    sc_free_processes(processes);
    if (sc_process_start_time(0) != 0 || sc_process_start_time(1) != 0 || sc_process_start_time(-5) != 0)
        return 14;

    const SCNet net = sc_sample_net(sampler);
    if (net.rxRate != 0 || net.txRate != 0) return 15;
    const SCDisk disk = sc_sample_disk(sampler);
    if (disk.readRate != 0 || disk.activeFraction != 0) return 16;

    SCDiskDevice devices[4];
    const int listed = sc_disk_devices(devices, 1);
    if (listed < 0 || listed > 1 || sc_disk_devices(NULL, 4) != 0 || sc_disk_devices(devices, 0) != 0)
        return 17;

    SCVolume* volumes = sc_read_volumes(&count);
    if (!volumes) return 18;
    for (uint32_t i = 0; i < count; ++i)
        if (volumes[i].total == 0 || volumes[i].used != volumes[i].total - volumes[i].freeBytes) return 19;
    sc_free_volumes(volumes);

    SCInterface* interfaces = sc_read_interfaces(&count);
    if (!interfaces) return 22;
    for (uint32_t i = 0; i < count; ++i)
        if (strlen(interfaces[i].name) == 0 || strcmp(interfaces[i].name, "lo") == 0) return 23;
    SCInterface noInterface;
    memset(&noInterface, 0, sizeof noInterface);
    if (memcmp(&interfaces[count], &noInterface, sizeof noInterface) != 0) return 24;
    sc_free_interfaces(interfaces);

    SCSampler* nowhere = sc_sampler_create_at("/nonexistent");
    processes = sc_sample_processes(nowhere, &count, NULL);
    if (!processes || count != 0) return 20;
    sc_free_processes(processes);
    if (sc_sample_cpu(nowhere).idle != 100 || sc_sample_cpu(nowhere).coreCount != 0) return 21;
    SCSensor sensors[2];
    if (sc_smc_read_temps(NULL, 2) != 0 || sc_smc_read_temps(sensors, 0) != 0) return 22;
    if (sc_smc_read_temps(sensors, 2) > 2 || sc_smc_read_keys('F', sensors, 2) > 2) return 23;
    if (!isnan(sc_smc_read_float("TC0")) || !isnan(sc_smc_read_float(NULL))) return 24;
    if (sc_smc_key_capacity() > 100000) return 25;

    const SCHardware hardware = sc_read_hardware();
    if (hardware.ncpu == 0 || hardware.memTotal != mem.total || hardware.pageSize != mem.pageSize) return 26;
    if (hardware.bootTime == 0 || strncmp(hardware.kernel, "Linux ", 6) != 0) return 27;
    const SCBattery battery = sc_read_battery();
    if (battery.percent < 0 || battery.percent > 100 || (!battery.present && battery.designCapacity != -1))
        return 28;
    const SCGpuStats gpu = sc_gpu_stats();
    if (gpu.device < -1 || gpu.device > 100 || gpu.tiler < -1) return 29;
    const SCPower power = sc_power_sample();
    if (power.cpuWatts < 0 || power.gpuWatts < 0 || power.sysWatts < 0) return 30;
    uint32_t engines = 7;
    char arch[4] = "xxx";
    if (sc_ane_info(NULL, arch, sizeof arch) || arch[0] != '\0') return 31;
    arch[0] = 'x';
    if (sc_ane_info(NULL, arch, 0) || arch[0] != 'x') return 32; /* no room, not touched */
    if (!sc_ane_info(&engines, arch, sizeof arch) && (engines != 0 || arch[0] != '\0')) return 33;
    if (strlen(arch) >= sizeof arch) return 34;

    sc_sampler_destroy(nowhere);
    sc_sampler_destroy(sampler);
    return 0;
}
