#include "desktop/SampleMachine.h"

#include "support/TempRoot.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace quarn::testing {
namespace {

constexpr uint64_t mib = 1ull << 20;
constexpr uint64_t gib = 1ull << 30;

/// A wave between 0 and 1 with bursts, different for each seed.
double wave(double tick, double seed) {
    const double slow = 0.5 + 0.5 * std::sin(tick / 17 + seed * 1.7);
    const double quick = 0.5 + 0.5 * std::sin(tick / 3.1 + seed * 4.3);
    const double burst = std::fmod(tick * 0.37 + seed * 5, 11) > 9.5 ? 1 : 0;
    return std::min(1.0, 0.45 * slow + 0.3 * quick + 0.45 * burst);
}

struct Program {
    const char *name, *path, *user;
    double cpu;        ///< percent of a core at its busiest
    uint64_t memory;   ///< MiB
    double diskRate;   ///< bytes per second at its busiest
    const char* owner; ///< "app/" or "user/" or "system/" and whose it is; empty for what a terminal started
};
constexpr std::array programs{
    Program{"firefox", "/usr/lib/firefox-esr/firefox-esr", "ada", 64, 812, 240e3, "app/firefox-esr"},
    Program{"cc1plus", "/usr/lib/gcc/x86_64-linux-gnu/12/cc1plus", "ada", 99, 460, 3.1e6, ""},
    Program{"gnome-shell", "/usr/bin/gnome-shell", "ada", 12, 388, 0, "user/org.gnome.Shell@wayland.service"},
    Program{"Web Content", "/usr/lib/firefox-esr/firefox-esr", "ada", 31, 344, 12e3, "app/firefox-esr"},
    Program{"postgres", "/usr/lib/postgresql/15/bin/postgres", "postgres", 9, 168, 910e3,
            "system/postgresql.service"},
    Program{"Xorg", "/usr/lib/xorg/Xorg", "root", 6, 121, 0, "system/gdm.service"},
    Program{"code", "/usr/share/code/code", "ada", 17, 512, 44e3, "app/code"},
    Program{"pipewire", "/usr/bin/pipewire", "ada", 3, 18, 0, "user/pipewire.service"},
    Program{"sshd", "/usr/sbin/sshd", "root", 0.2, 6, 0, "system/ssh.service"},
    Program{"bash", "/usr/bin/bash", "ada", 0.1, 5, 0, ""},
    Program{"systemd-journal", "/usr/lib/systemd/systemd-journald", "root", 0.6, 42, 18e3,
            "system/systemd-journald.service"},
    Program{"kworker/u16:2-events_unbound", "", "root", 1.1, 0, 0, "kernel"},
    Program{"thunderbird", "/usr/lib/thunderbird/thunderbird", "ada", 8, 421, 36e3, "app/thunderbird"},
    Program{"clangd", "/usr/bin/clangd", "ada", 22, 640, 90e3, "app/code"},
    Program{"ninja", "/usr/bin/ninja", "ada", 2, 9, 4e3, ""},
    Program{"Xwayland", "/usr/bin/Xwayland", "ada", 4, 96, 0, "user/org.gnome.Shell@wayland.service"},
    Program{"tmux: server", "/usr/bin/tmux", "ada", 0.4, 14, 0, ""},
    Program{"nautilus", "/usr/bin/nautilus", "ada", 1, 118, 0, "app/org.gnome.Nautilus"},
    Program{"wireplumber", "/usr/bin/wireplumber", "ada", 0.5, 22, 0, "user/wireplumber.service"},
    Program{"gnome-terminal-", "/usr/libexec/gnome-terminal-server", "ada", 3, 74, 0,
            "app/org.gnome.Terminal"},
    Program{"tracker-miner-f", "/usr/libexec/tracker-miner-fs-3", "ada", 1.5, 48, 130e3,
            "user/tracker-miner-fs-3.service"},
    Program{"cupsd", "/usr/sbin/cupsd", "root", 0.1, 12, 0, "system/cups.service"},
    Program{"containerd", "/usr/bin/containerd", "root", 1.2, 58, 7e3, "system/containerd.service"},
    Program{"redis-server", "/usr/bin/redis-server", "root", 0.9, 16, 2e3, "system/redis-server.service"},
    Program{"jbd2/nvme0n1p2-8", "", "root", 0.3, 0, 0, "kernel"},
};

const Program& programOf(size_t index) { return programs[index % programs.size()]; }
bool isKernel(const Program& program) { return program.owner == std::string_view("kernel"); }
int64_t pidOf(size_t index) { return static_cast<int64_t>(index == 0 ? 1204 : 300 + index * 37); }

ProcInfo process(size_t index, double tick) {
    const Program& program = programOf(index);
    const double share = index < programs.size() ? wave(tick, static_cast<double>(index)) : 0.02;
    const bool isUser = program.user == std::string_view("ada");
    const uint64_t start = 1'700'000'000 + index * 60;
    return {.pid = pidOf(index),
            .ppid = isKernel(program) ? 2
                    : index % 3 == 0  ? 1
                                      : static_cast<int64_t>(300 + index / 3 * 37),
            .uid = isUser ? 1000 : 0,
            .name = program.name,
            .user = program.user,
            .state = share > 0.3 ? "Running" : "Sleeping",
            .path = program.path,
            .cpuPercent = program.cpu * share,
            .memBytes = static_cast<uint64_t>(static_cast<double>(program.memory * mib) /
                                              (index < programs.size() ? 1 : 2 + index % 7)),
            .threads = static_cast<int64_t>(1 + index * 7 % 40),
            .cpuTimeNs = static_cast<uint64_t>((tick + 3600) * program.cpu * 1e7),
            .startTime = start,
            .startTimeMicros = start * 1'000'000,
            .accessible = true,
            .diskRead = isUser ? 1'000'000 * index : 0,
            .diskReadRate = isUser ? program.diskRate * share : 0,
            .diskWriteRate = isUser ? program.diskRate * share / 3 : 0,
            .contextSwitches = 1000 * index,
            .cswRate = 40 * share,
            .energyNj = {},
            .watts = {},
            .ioKnown = isUser};
}

NetInterface interface(const char* name, double in, double out) {
    return {.name = name,
            .mac = "02:42:ac:11:00:02",
            .addrs = "192.0.2.17, fd00::17",
            .up = true,
            .rxBytes = 74'210'000'000,
            .txBytes = 5'104'000'000,
            .mtu = 1500,
            .linkSpeedMbps = 1000,
            .media = "1000baseT full-duplex",
            .netmask = {},
            .broadcast = {},
            .rxRate = in,
            .txRate = out};
}

} // namespace

Snapshot SampleMachine::at(int tickNumber) const {
    const double tick = tickNumber;
    Snapshot s;
    s.cpu = {};
    for (size_t core = 0; core < cores; ++core) {
        const double busy = 100 * wave(tick, static_cast<double>(core) / 3);
        s.cpu.perCore.push_back(busy);
        s.cpu.perCoreSystem.push_back(busy / 5);
        s.cpu.total += busy / static_cast<double>(cores);
    }
    s.cpu.system = s.cpu.total / 5;
    s.cpu.user = s.cpu.total - s.cpu.system;
    s.cpu.idle = 100 - s.cpu.total;
    s.mem.total = 16 * gib;
    s.mem.app = static_cast<uint64_t>((5.1 + 0.8 * wave(tick / 4, 3)) * gib);
    s.mem.wired = 900 * mib;
    s.mem.compressed = 210 * mib;
    s.mem.used = s.mem.app + s.mem.wired + s.mem.compressed;
    s.mem.cached = 6 * gib;
    s.mem.freeBytes = s.mem.total - s.mem.used - s.mem.cached;
    s.mem.freeCount = s.mem.freeBytes;
    s.mem.swapTotal = 4 * gib;
    s.mem.swapUsed = 420 * mib;
    s.mem.pageSize = 4096;
    s.mem.pressureLevel = 1;
    s.mem.freePercent = 61;
    s.rates.faults = 1840;
    s.rates.pageIn = 12;
    s.rates.contextSwitches = 8'400;
    s.net.rxRate = 2.4e6 * wave(tick, 7);
    s.net.txRate = 310e3 * wave(tick, 8);
    s.net.rxBytes = 74'210'000'000;
    s.net.txBytes = 5'104'000'000;
    s.interfaces = {interface("eth0", s.net.rxRate, s.net.txRate), interface("wlan0", 0, 0)};
    s.disk.readRate = 14e6 * wave(tick, 9);
    s.disk.writeRate = 5e6 * wave(tick, 10);
    s.disk.activeFraction = 0.07;
    s.disk.diskCount = 2;
    s.disk.capacityBytes = 1'512'000'000'000;
    DiskDevice internal{"nvme0n1", "Samsung SSD 980", "NVMe", "SSD", "NVMe", "", 1'000'204'886'016, true};
    internal.readRate = s.disk.readRate;
    internal.writeRate = s.disk.writeRate;
    s.disks = {internal, {"sda", "Portable SSD", "USB", "SSD", "USB", "", 512'110'190'592}};
    s.gpu = {.device = 100 * wave(tick, 11) / 2,
             .renderer = 22,
             .tiler = -1,
             .memUsed = 1210 * mib,
             .memAlloc = 4 * gib};
    s.power.sysWatts = 9 + 14 * wave(tick, 12);
    s.power.cpuWatts = s.power.sysWatts * 0.55;
    s.power.gpuWatts = s.power.sysWatts * 0.2;
    s.power.dramWatts = 1.2;
    s.power.available = true;
    s.powerSource = "Battery";
    s.temps = {{"TCU1", 48 + 22 * wave(tick, 13)},
               {"TCU2", 51},
               {"TCU3", 49},
               {"TNK1", 38},
               {"TG41", 44},
               {"TWl1", 46}};
    s.fanKeys = {{"F0Ac", 1900 + 300 * wave(tick, 14)}};
    s.battery = {.present = true,
                 .percent = 74,
                 .timeToEmptyMin = 312,
                 .cycleCount = 208,
                 .designCapacity = 4400,
                 .nominalCapacity = 4031,
                 .voltage_mV = 11620,
                 .amperage_mA = -1290,
                 .temperatureC = 31,
                 .health = "Good"};
    std::vector<ProcInfo> list;
    for (size_t i = 0; i < processes; ++i) list.push_back(process(i, tick));
    std::sort(list.begin(), list.end(), [](const ProcInfo& a, const ProcInfo& b) { return a.pid < b.pid; });
    for (const auto& p : list) s.totalThreads += p.threads;
    s.processes = std::move(list);
    s.loadAvg = {2.31, 1.84, 1.40};
    s.uptime = 273'600 + tick;
    s.generation = s.processGeneration = s.disksGeneration = s.interfacesGeneration = 2 + tickNumber;
    s.timestamp = WallTime(std::chrono::seconds(1'700'300'000 + tickNumber));
    return s;
}

namespace {

/// The control group of a process, as systemd names it.
std::string groupOf(std::string_view owner) {
    constexpr std::string_view session = "0::/user.slice/user-1000.slice/user@1000.service/";
    const std::string name(owner.substr(owner.find('/') + 1));
    if (owner.starts_with("system/")) return "0::/system.slice/" + name;
    if (owner.starts_with("user/")) return std::string(session) + "session.slice/" + name;
    if (owner == "kernel") return "0::/";
    std::string escaped;
    for (const char c : owner.empty() ? "org.gnome.Terminal" : name)
        escaped += c == '-' ? "\\x2d" : std::string(1, c);
    return std::string(session) + "app.slice/app-gnome-" + escaped + "-7.scope";
}

/// The menus, and whose each process is.
void captureOwners(TempRoot& root, size_t processes) {
    constexpr std::pair<const char*, const char*> entries[]{
        {"firefox-esr", "Name=Firefox ESR\nExec=/usr/lib/firefox-esr/firefox-esr %u"},
        {"thunderbird", "Name=Thunderbird\nExec=/usr/lib/thunderbird/thunderbird %u"},
        {"code", "Name=Visual Studio Code\nExec=/usr/share/code/code %F"},
        {"org.gnome.Nautilus", "Name=Files\nExec=/usr/bin/nautilus"},
        {"org.gnome.Terminal", "Name=Terminal\nExec=gnome-terminal\nCategories=TerminalEmulator;"},
    };
    for (const auto& [id, lines] : entries)
        root.write("usr/share/applications/" + std::string(id) + ".desktop",
                   "[Desktop Entry]\nType=Application\nIcon=" + std::string(id) + "\n" + lines + "\n");
    for (size_t i = 0; i < processes; ++i) {
        const Program& program = programOf(i);
        const std::string folder = "proc/" + std::to_string(pidOf(i)) + "/";
        root.write(folder + "cgroup", groupOf(program.owner) + "\n");
        const bool isInTerminal = !*program.owner;
        root.write(folder + "stat",
                   std::to_string(pidOf(i)) + " (x) S 1 1 1 " + (isInTerminal ? "34816" : "0") + " 1 " +
                       (isKernel(program) ? "2129984" : "4194560") + " 0 0 0 0 1 1 0 0 20 0 1 0 100 0\n");
    }
}

} // namespace

void SampleMachine::capture(TempRoot& root) {
    captureOwners(root, SampleMachine().processes);
    constexpr std::string_view hwmon = "sys/class/hwmon/hwmon";
    const auto chip = [&](int number, std::string_view listing) {
        root.files(std::string(hwmon) + std::to_string(number), listing);
    };
    chip(0, "name=coretemp;temp1_label=Package id 0;temp1_input=61000;temp1_max=100000;temp1_crit=100000;"
            "temp2_label=Core 0;temp2_input=51000;temp2_max=100000;temp2_crit=100000;"
            "temp3_label=Core 1;temp3_input=49000;temp3_max=100000;temp3_crit=100000");
    chip(1, "name=nvme;temp1_label=Composite;temp1_input=38000;temp1_max=81850;temp1_crit=84850");
    chip(2, "name=amdgpu;temp1_label=edge;temp1_input=44000;temp1_crit=97000");
    chip(3, "name=thinkpad;fan1_input=2002");
    chip(4, "name=iwlwifi_1;temp1_input=46000");

    std::string processors;
    for (int core = 0; core < 8; ++core)
        processors += "processor\t: " + std::to_string(core) +
                      "\nvendor_id\t: GenuineIntel\nmodel name\t: Intel(R) Core(TM) i7-8565U CPU @ 1.80GHz\n"
                      "physical id\t: 0\ncore id\t: " +
                      std::to_string(core) + "\ncpu cores\t: 8\n\n";
    root.write("proc/cpuinfo", processors);
    root.write("sys/devices/system/cpu/online", "0-7\n");
    root.write("sys/devices/system/cpu/possible", "0-7\n");
    root.files("sys/class/dmi/id", "sys_vendor=Sample;product_name=Sample Book 14;chassis_type=10");
    root.write("proc/meminfo", "MemTotal:       16777216 kB\n");
    root.write("etc/os-release", "PRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\n");

    struct Socket {
        int pid;
        const char *local, *remote, *state; ///< addresses and states as the kernel writes them
    };
    constexpr const char* listening = "0A";
    constexpr const char* connected = "01";
    constexpr Socket sockets[]{
        {1204, "1102000A:A1B2", "0A3364C6:01BB", connected},
        {1204, "1102000A:A1C0", "117100CB:01BB", connected},
        {1204, "1102000A:A1CC", "257100CB:01BB", "08"},
        {744, "1102000A:C350", "143364C6:03E1", connected},
        {744, "1102000A:C360", "2A7100CB:0016", "02"},
        {448, "0100007F:1538", "00000000:0000", listening},
        {448, "0100007F:1538", "0100007F:D2F0", connected},
        {596, "00000000:0016", "00000000:0000", listening},
        {596, "1102000A:0016", "2202000A:E1F4", connected},
        {522, "1102000A:B4D2", "0C3364C6:01BB", connected},
        {522, "0100007F:D2F0", "0100007F:1538", connected},
        {1151, "0100007F:18EB", "00000000:0000", listening},
        {1077, "00000000:0277", "00000000:0000", listening},
        {1151, "0100007F:18EB", "0100007F:E000", "06"},
    };
    std::string table = "  sl  local_address rem_address   st\n";
    int inode = 20'000;
    for (const Socket& socket : sockets) {
        ++inode;
        table += "   0: " + std::string(socket.local) + ' ' + socket.remote + ' ' + socket.state +
                 " 00000000:00000000 00:00000000 00000000  1000        0 " + std::to_string(inode) + " 1 0\n";
        root.link("proc/" + std::to_string(socket.pid) + "/fd/" + std::to_string(inode),
                  "socket:[" + std::to_string(inode) + "]");
    }
    root.write("proc/net/tcp", table);
}

LiveHistory SampleMachine::history(int ticks) const {
    LiveHistory history;
    for (int tick = 0; tick < ticks; ++tick) history.add(at(tick), known(), tick, 1);
    return history;
}

} // namespace quarn::testing
