/* A stand-in for NVIDIA's management library: two GPUs, of which the second measures next to nothing. */
#include <string.h>

struct PciInfo {
    char busIdLegacy[16];
    unsigned domain, bus, device, pciDeviceId, pciSubSystemId;
    char busId[32];
};

static int sessions = 0;
static unsigned long long energy = 1000;

int fakeNvmlSessions(void) { return sessions; }

int nvmlInit_v2(void) {
    ++sessions;
    return 0;
}
int nvmlShutdown(void) {
    --sessions;
    return 0;
}
int nvmlDeviceGetCount_v2(unsigned* count) {
    *count = 3; /* the last one fell off the bus */
    return 0;
}
int nvmlDeviceGetHandleByIndex_v2(unsigned index, void** device) {
    static char devices[2];
    if (index >= 2) return 15;
    *device = &devices[index];
    return 0;
}
static int isSecond(void* device) {
    void* second = 0;
    nvmlDeviceGetHandleByIndex_v2(1, &second);
    return device == second;
}
int nvmlDeviceGetPciInfo_v3(void* device, struct PciInfo* info) {
    memset(info, 0, sizeof *info);
    strcpy(info->busId, isSecond(device) ? "00000000:B1:00.0" : "00000000:17:00.0");
    return 0;
}
int nvmlDeviceGetName(void* device, char* name, unsigned length) {
    strncpy(name, isSecond(device) ? "NVIDIA A30" : "NVIDIA T4", length);
    return 0;
}
int nvmlDeviceGetNumGpuCores(void* device, unsigned* cores) {
    *cores = 2560;
    return isSecond(device) ? 3 : 0;
}
int nvmlDeviceGetUtilizationRates(void* device, unsigned rates[2]) {
    rates[0] = 37;
    rates[1] = 12;
    return isSecond(device) ? 3 : 0;
}
int nvmlDeviceGetMemoryInfo(void* device, unsigned long long memory[3]) {
    memory[0] = 16ull << 30;
    memory[1] = 12ull << 30;
    memory[2] = 4ull << 30;
    return isSecond(device) ? 3 : 0;
}
int nvmlDeviceGetTotalEnergyConsumption(void* device, unsigned long long* millijoules) {
    *millijoules = energy += 500;
    return isSecond(device) ? 3 : 0;
}
/* nvmlDeviceGetPowerUsage is missing, as from a very old library. */
