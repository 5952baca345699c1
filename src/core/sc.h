/* The flat interface of the sampling core, callable from C.
 *
 * Every function is total: none throws, prints or aborts. A failure shows as a zero count, a zero or
 * default field, an `ok` or `available` flag that is false, or NaN. Texts are NUL-terminated UTF-8 or raw
 * bytes from the kernel, cut to their array.
 *
 * Record arrays: a function that returns a block allocates count + 1 zero-filled records, stores the count
 * through its optional out-pointer (0 when the allocation failed) and hands the block to the caller, who
 * releases it with the matching sc_free_ function. Functions that fill a caller's array take a maximum and
 * return how many they wrote.
 *
 * Threads: a handle is used by one thread at a time; functions without a handle may be called from any.
 * Counters are cumulative since boot, sizes are bytes, rates are per second. */
#ifndef QUARN_CORE_SC_H
#define QUARN_CORE_SC_H

#include <stdbool.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Handle: the state of the samplers that measure against their previous call. */

typedef struct SCSampler SCSampler;

/* A handle on this machine. Never fails short of memory exhaustion. */
SCSampler* sc_sampler_create(void);
/* A handle on the machine captured under `root` (a folder holding proc, sys, etc, …). */
SCSampler* sc_sampler_create_at(const char* root);
/* Releases a handle; null is ignored. */
void sc_sampler_destroy(SCSampler* sampler);

/* ---- CPU. */

#define SC_MAX_CORES 64

/* Shares in percent of all logical CPUs. The first sample of a handle, and the first after the set of CPUs
 * changed, only primes: total 0, idle 100, every core 0. */
typedef struct SCCpu {
    double total; /* user + system */
    double user;  /* nice time included */
    double system;
    double idle;
    uint32_t coreCount; /* valid entries below, at most SC_MAX_CORES; the shares above cover all CPUs */
    double cores[SC_MAX_CORES];
    double coreSystem[SC_MAX_CORES];
} SCCpu;

SCCpu sc_sample_cpu(SCSampler* sampler);

/* ---- Memory, in bytes unless named a count. */

typedef struct SCMem {
    uint64_t total;
    uint64_t used; /* app + wired + compressed */
    uint64_t app;  /* anonymous and shared memory that belongs to processes */
    uint64_t wired;
    uint64_t compressed; /* what the compressor (zswap, zram) occupies */
    uint64_t cached;     /* file-backed and reclaimable memory */
    uint64_t freeBytes;
    uint64_t swapUsed;
    uint64_t swapTotal;
    uint64_t pageSize;
    uint64_t pageIns;  /* count of pages */
    uint64_t pageOuts; /* count of pages */
    uint64_t active;
    uint64_t inactive;
    uint64_t speculative;
    uint64_t purgeable;
    uint64_t external;
    uint64_t freeCount;      /* bytes, the same as freeBytes */
    uint64_t faults;         /* count */
    uint64_t cowFaults;      /* count; the Linux kernel keeps none */
    uint64_t lookups;        /* count; the Linux kernel keeps none */
    uint64_t hits;           /* count; the Linux kernel keeps none */
    uint64_t compressions;   /* count of pages */
    uint64_t decompressions; /* count of pages */
    uint64_t swapIns;        /* count of pages */
    uint64_t swapOuts;       /* count of pages */
    uint64_t swapFree;
    uint32_t pressureLevel; /* 1 normal, 2 warning, 4 critical; never 0 */
    uint32_t freePercent;   /* share of memory available without swapping */
} SCMem;

SCMem sc_read_mem(void);

/* Whole seconds since boot, 0.0 when unknown. */
double sc_uptime_seconds(void);
/* Fills three load averages (1, 5, 15 minutes), zeroed first; the number obtained, -1 on failure. */
int sc_load_average(double* out);
/* True when the effective user is root. */
bool sc_is_root(void);

/* ---- Processes. */

typedef struct SCProcess {
    int32_t pid;
    int32_t ppid;
    uint32_t uid; /* effective user */
    char name[96];
    char user[40];
    char state[24]; /* "Starting", "Running", "Sleeping", "Stopped", "Zombie" or "—" */
    char path[1024];
    double cpuPercent; /* of one core, since the previous call; 0 on a first sight */
    uint64_t memBytes; /* anonymous memory, resident or swapped; resident size when only that is known */
    uint32_t threads;
    uint64_t cpuTimeNs; /* user + system */
    uint64_t diskRead;  /* bytes fetched from storage; see ioKnown */
    uint64_t diskWrite; /* bytes sent to storage; see ioKnown */
    uint64_t contextSwitches;
    uint64_t energyNj;
    bool energyKnown;
    uint64_t startTime;       /* seconds since the epoch */
    uint64_t startTimeMicros; /* microseconds since the epoch; with pid it names one process instance */
    bool accessible;          /* the measurements above could be read */
    bool ioKnown;             /* diskRead and diskWrite could be read (not so for other users' processes) */
} SCProcess;

/* Every process, in order of pid. `threads` (optional) receives the sum of all thread counts. */
SCProcess* sc_sample_processes(SCSampler* sampler, uint32_t* count, uint32_t* threads);
void sc_free_processes(SCProcess* processes);
/* Start of one process in microseconds since the epoch; 0 for pids below 2 and for unknown ones. */
uint64_t sc_process_start_time(int32_t pid);

/* ---- Network totals over the interfaces that carry the machine's own traffic. */

typedef struct SCNet {
    uint64_t rxBytes; /* totals that never go down while the handle lives */
    uint64_t txBytes;
    uint64_t rxPackets;
    uint64_t txPackets;
    double rxRate; /* bytes per second */
    double txRate;
    double rxPacketRate;
    double txPacketRate;
} SCNet;

SCNet sc_sample_net(SCSampler* sampler);

/* ---- Network interfaces: see InterfaceList.h for what is listed. */

typedef struct SCInterface {
    char name[32];
    char mac[24];
    char addrs[256]; /* joined with ", ", IPv4 first */
    bool up;
    uint64_t rxBytes; /* 64-bit counters of the kernel */
    uint64_t txBytes;
    uint64_t rxPackets;
    uint64_t txPackets;
    uint64_t rxErrors;
    uint64_t txErrors;
    uint64_t drops;
    uint64_t collisions;
    int32_t mtu;
    int32_t linkSpeedMbps; /* 0 unknown */
    char media[64];        /* "1000baseT full-duplex", "IEEE 802.11 (no link)", ... */
    char netmask[64];
    char broadcast[64];
    bool loopback;
    bool pointToPoint;
    bool multicastCapable;
} SCInterface;

SCInterface* sc_read_interfaces(uint32_t* count);
void sc_free_interfaces(SCInterface* interfaces);

/* ---- Disks. */

typedef struct SCDisk {
    uint64_t readBytes; /* sums over the physical drives */
    uint64_t writeBytes;
    uint64_t readOps;
    uint64_t writeOps;
    double readRate; /* bytes per second */
    double writeRate;
    double readOpsRate; /* operations per second */
    double writeOpsRate;
    uint64_t readTimeNs; /* cumulative service time */
    uint64_t writeTimeNs;
    double activeFraction; /* 0 to 1 */
    double avgResponseMs;  /* per operation */
    uint64_t capacityBytes;
    uint32_t diskCount;
} SCDisk;

SCDisk sc_sample_disk(SCSampler* sampler);

typedef struct SCDiskDevice {
    char bsd[32]; /* kernel name of the block device */
    char name[128];
    char interconnect[48];
    char medium[24]; /* "SSD", "HDD" or empty */
    char architecture[64];
    char link[48]; /* such as "PCIe 4.0 x4" */
    uint64_t size;
    uint64_t readBytes;
    uint64_t writeBytes;
    int32_t internalDisk; /* 0 or 1 */
    int32_t removable;    /* 0 or 1 */
} SCDiskDevice;

int sc_disk_devices(SCDiskDevice* out, int max);

typedef struct SCVolume {
    char mount[256];
    char device[128];
    char fs[32];
    uint64_t total;
    uint64_t freeBytes; /* available to ordinary users */
    uint64_t used;
    bool local;
} SCVolume;

SCVolume* sc_read_volumes(uint32_t* count);
void sc_free_volumes(SCVolume* volumes);

/* ---- Sensors: named by keys of four characters, such as "TC01" for a temperature of a CPU. The keys of the
 * machine's sensors are kept for the life of the program; sensors that appear later are added. A slow sensor
 * delays no call by more than a twentieth of a second, and sleeping devices are not woken. */

typedef struct SCSensor {
    char name[8]; /* four key characters */
    double value;
} SCSensor;

/* How many keys there are. */
uint64_t sc_smc_key_capacity(void);
/* The value of one key; NaN when it has none, or `key` is not four characters. "PSTR" is what the whole
 * machine draws and "PDTR" what an adapter delivers, in watts, where the hardware tells. */
double sc_smc_read_float(const char* key);
/* Temperatures in degrees Celsius: plausible ones (0 to 130) of sensors that were plausible (5 to 125) when
 * they were first seen. */
int sc_smc_read_temps(SCSensor* out, int max);
/* The readings of one kind: 'F' revolutions per minute, 'V' volts, 'I' amperes, 'P' watts, or any other
 * first character of keys. */
int sc_smc_read_keys(char kind, SCSensor* out, int max);

/* ---- Records of the hardware readings. */

typedef struct SCPower { /* watts, averaged since the previous sample */
    double sysWatts;
    double cpuWatts;
    double gpuWatts;
    double aneWatts;
    double dramWatts;
    double encoderWatts;
    double decoderWatts;
    double ispWatts;
    double displayWatts;
    bool available; /* the split by domain was measured */
} SCPower;

/* Averages since the previous call, the first since the program asked at all. One queue at a time. */
SCPower sc_power_sample(void);

/* The processor for neural networks: false when there is none. `cores` is 0 when unknown; `arch` (optional)
 * receives a name, cut to `archSize`. */
bool sc_ane_info(uint32_t* cores, char* arch, uint32_t archSize);

typedef struct SCGpuStats { /* percent, -1 when no GPU reports it */
    double device;
    double renderer;
    double tiler;
    uint64_t memUsed;  /* bytes, summed over the GPUs */
    uint64_t memAlloc; /* a GPU's own memory, or what programs were given of the system's */
} SCGpuStats;

/* The busiest of all GPUs now; some tell their load from the second call on. */
SCGpuStats sc_gpu_stats(void);

typedef struct SCBattery { /* -1 marks an unknown time, count or capacity */
    bool present;
    int32_t percent;
    bool charging;
    bool onAC;
    int32_t timeToEmptyMin;
    int32_t timeToFullMin;
    int32_t cycleCount;
    int32_t designCapacity;  /* mAh */
    int32_t nominalCapacity; /* mAh when full */
    int32_t voltage_mV;
    int32_t amperage_mA; /* negative while discharging */
    double temperatureC;
    char health[32];
} SCBattery;

SCBattery sc_read_battery(void);

typedef struct SCHardware { /* texts empty and numbers 0 when unknown; sizes in bytes */
    char model[64];
    char cpuBrand[128];
    char arch[16];
    char osVersion[32];
    char osBuild[32];
    char kernel[64];
    char hostname[128];
    char gpuName[64];
    uint32_t ncpu; /* logical CPUs */
    uint32_t physCpu;
    uint32_t perfCores; /* 0, as the next, on a processor with one kind of core */
    uint32_t effCores;
    uint32_t gpuCores;
    uint64_t memTotal;
    uint64_t l2Cache; /* of one performance core, as the two below */
    uint64_t pageSize;
    uint64_t bootTime; /* seconds since the epoch */
    uint64_t l1iCache;
    uint64_t l1dCache;
    uint64_t l2CacheE; /* of one efficiency core */
    bool hvSupport;    /* can run virtual machines */
    bool vmPresent;    /* is a virtual machine */
} SCHardware;

SCHardware sc_read_hardware(void);

/* ---- Sockets. */

/* `state` counts 0 CLOSED, 1 LISTEN, 2 SYN_SENT, 3 SYN_RECEIVED, 4 ESTABLISHED, 5 CLOSE_WAIT, 6 FIN_WAIT_1,
 * 7 CLOSING, 8 LAST_ACK, 9 FIN_WAIT_2, 10 TIME_WAIT. */
typedef struct SCSocket {
    int32_t pid;       /* owning process */
    char name[64];     /* of the process */
    int32_t protocol;  /* 6 (TCP) or 17 (UDP) */
    int32_t ipVersion; /* 6 for sockets of the IPv6 family, whatever the form of the texts; else 4 */
    char local[48];    /* empty for the unspecified address */
    int32_t localPort;
    bool hasRemote;
    char remote[48]; /* empty when there is none */
    int32_t remotePort;
    int32_t state;     /* of TCP, as above; -1 for UDP */
    uint64_t socketId; /* kernel identity of the socket, 0 when it has none */
} SCSocket;

/* The TCP and UDP sockets of every process that the caller may inspect, in the network namespace of the
 * caller. A socket that several descriptors or processes share is listed once, under the lowest pid. Costs a
 * look at every open descriptor; callers that list again and again use SocketLister. */
SCSocket* sc_read_sockets(uint32_t* count);
void sc_free_sockets(SCSocket* sockets);

/* Writes an address of `family` (AF_INET: 4 bytes, AF_INET6: 16 bytes, network order) as text; empty for the
 * unspecified address and for any other family. */
void formatHost(int family, const void* address, char out[48]);

#ifdef __cplusplus
}
#endif

#endif
