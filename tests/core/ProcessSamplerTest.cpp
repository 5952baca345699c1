#include "core/ProcessSampler.h"

#include "support/TempRoot.h"

#include <algorithm>

namespace {

using namespace sysinfo;
using platform::KernelProcess;
using RunState = KernelProcess::RunState;

KernelProcess process(int32_t pid, uint64_t start, uint64_t cpuNs, uint64_t revision) {
    KernelProcess p;
    p.pid = pid;
    p.startTimeMicros = start;
    p.cpuTimeNs = cpuNs;
    p.revision = revision;
    p.state = RunState::sleeping;
    p.measured = true;
    p.shortName = "p";
    return p;
}

constexpr uint64_t second = 1'000'000'000;

TEST(ProcessSampler, ShareOfEachCase) {
    ProcessSampler sampler(SystemRoot("/nowhere"));
    std::vector<KernelProcess> before{process(1, 10, 5 * second, 1), process(2, 10, 100, 2),
                                      process(3, 10, 9000, 3), process(4, 10, 50, 4), process(6, 10, 7, 5)};
    for (const auto& info : sampler.advance(before, second))
        EXPECT_EQ(info.cpuPercent, 0) << "the first call primes";

    std::vector<KernelProcess> after{process(1, 10, 5 * second + 3 * second, 6), // three cores for a second
                                     process(2, 10, 100, 2),                     // idle: the same revision
                                     process(3, 11, 9000 + second, 7), // the pid is another process now
                                     process(4, 10, 40, 8),            // the counter went backwards
                                     process(5, 10, second, 9),        // new
                                     process(6, 10, 7 + second, 10)};
    after[5].measured = false;
    const auto& list = sampler.advance(after, 2 * second);
    std::vector<double> shares;
    for (const auto& info : list) shares.push_back(info.cpuPercent);
    EXPECT_EQ(shares, (std::vector<double>{300, 0, 0, 0, 0, 0}));
    EXPECT_FALSE(list[5].accessible);
    EXPECT_EQ(list[5].state, "—");

    // Pid 3 is measured against itself from now on.
    after[2].cpuTimeNs += second / 2;
    after[2].revision = 11;
    EXPECT_DOUBLE_EQ(sampler.advance(after, 3 * second)[2].cpuPercent, 50);
}

TEST(ProcessSampler, NameRule) {
    const char* const cases[][4] = {
        {"a cut name", "gnome-terminal-", "/usr/libexec/gnome-terminal-server", "gnome-terminal-server"},
        {"a shorter file name never replaces", "Web Content", "/usr/lib/firefox", "Web Content"},
        {"equal", "bash", "/bin/bash", "bash"},
        {"longer than the kernel keeps whole", "exactly16bytes_x", "/bin/sh", "sh"},
        {"no executable", "kworker/0:1", "", "kworker/0:1"},
        {"no last component", "x", "/usr/bin/", "x"},
        {"a path of one component", "x", "python3", "python3"},
    };
    for (const auto& [rule, shortName, path, expected] : cases)
        EXPECT_EQ(displayName(shortName, path), expected) << rule;
}

TEST(ProcessSampler, StatesAndUsers) {
    quarn::testing::TempRoot machine;
    machine.write("etc/passwd",
                  "root:x:0:0::/:/bin/sh\nbroken line\nann:x:1000:1000:Ann:/home/ann:/bin/sh\n");
    ProcessSampler sampler(machine.root());
    std::vector<KernelProcess> table;
    for (const auto state : {RunState::starting, RunState::running, RunState::sleeping, RunState::stopped,
                             RunState::zombie, RunState::unknown}) {
        table.push_back(process(static_cast<int32_t>(table.size()) + 1, 1, 1, table.size() + 1));
        table.back().state = state;
    }
    table[0].uid = 1000;
    table[1].uid = 4711;
    std::string shown;
    for (const auto& info : sampler.advance(table, second))
        shown += std::string(info.state.view()) + ' ' + std::string(info.user.view()) + ' ';
    EXPECT_EQ(shown, "Starting ann Running 4711 Sleeping root Stopped root Zombie root — root ");
}

} // namespace
