// The three-level process reading, checked on real processes against a plain reading of everything.
#include "core/linux/ProcessTable.h"
#include "core/Support.h"

#include "core/ProcessSampler.h"
#include "support/Child.h"

#include <fstream>
#include <map>
#include <set>
#include <sys/prctl.h>

namespace {

using namespace quarn::testing;
using RunState = KernelProcess::RunState;

using ByPid = std::map<int32_t, KernelProcess>;

ByPid byPid(std::span<const KernelProcess> table) {
    ByPid result;
    for (const auto& process : table) result.emplace(process.pid, process);
    return result;
}

/// The children of this process; other processes of the machine move while the test looks.
ByPid ownChildren(ProcessTable& table) {
    ByPid result = byPid(table.read().value());
    std::erase_if(result, [](const auto& entry) { return entry.second.ppid != ::getpid(); });
    return result;
}

std::map<int32_t, std::string> described(const ByPid& processes) {
    std::map<int32_t, std::string> texts;
    for (const auto& [pid, p] : processes) {
        // The kernel forgets a zombie's path; who saw it before still knows.
        const auto path = p.state == RunState::zombie ? Text() : p.path;
        texts[pid] = joined(p.shortName, path, p.ppid, p.uid, static_cast<int>(p.state), p.threads,
                            p.startTimeMicros, p.cpuTimeNs, p.memBytes, p.contextSwitches, p.diskWrite);
    }
    return texts;
}

TEST(ProcessTable, AgreesWithAPlainReadingThroughALifetime) {
    static std::vector<char> memory;
    const auto obey = [](char letter) {
        switch (letter) {
        case 'b': burnCpu(3'000'000); break;
        case 'n': ::prctl(PR_SET_NAME, ") R 1 \n(x"); break;
        case 'm': memory.assign(8 << 20, 'x'); break;
        default: break;
        }
    };
    ProcessTable table(SystemRoot::host());
    table.read();
    Child busy(obey), quiet(obey);
    const auto compare = [&] { // with a table made anew, which reads every process in full
        // A child that just went to rest may still spend some microseconds in the kernel: a reading counts
        // when no clock moved meanwhile.
        const auto clocks = [&] {
            const auto ofBusy = busy.pid() > 0 ? processClock(busy.pid()) : std::nullopt; // −1 once reaped
            return std::pair(ofBusy, processClock(quiet.pid()));
        };
        ByPid kept, plain;
        for (auto before = clocks();; before = clocks()) {
            ProcessTable fresh(SystemRoot::host());
            kept = ownChildren(table);
            plain = ownChildren(fresh);
            if (before == clocks()) break;
        }
        EXPECT_EQ(described(kept), described(plain));
    };

    busy.settle();
    quiet.settle();
    compare();
    for (const char letter : {'b', 'n', 'm', 'b'}) {
        busy.tell(letter);
        busy.settle();
        compare();
    }
    EXPECT_EQ(byPid(table.read().value()).at(busy.pid()).shortName, ") R 1 \n(x");

    ::kill(quiet.pid(), SIGSTOP);
    ::waitpid(quiet.pid(), nullptr, WUNTRACED);
    compare();
    EXPECT_EQ(byPid(table.read().value()).at(quiet.pid()).state, RunState::stopped);

    busy.kill();
    ::waitid(P_PID, static_cast<id_t>(busy.pid()), nullptr, WEXITED | WNOWAIT);
    compare();
    EXPECT_EQ(byPid(table.read().value()).at(busy.pid()).state, RunState::zombie);
    const pid_t gone = busy.pid();
    busy.reap();
    compare();
    EXPECT_FALSE(byPid(table.read().value()).contains(gone));
}

TEST(ProcessTable, SeesAnOrphanMoveToItsNewParentWithoutRunning) {
    Child parent([&](char) {
        if (::fork() == 0)
            for (;;) ::pause();
    });
    parent.tell('f');
    ProcessTable table(SystemRoot::host());
    pid_t grandchild = 0;
    for (const auto& [pid, process] : byPid(table.read().value()))
        if (process.ppid == parent.pid()) grandchild = pid;
    ASSERT_GT(grandchild, 0);
    settle(grandchild); // it does not run from now on
    const auto currentParent = [&] { return byPid(table.read().value()).at(grandchild).ppid; };
    const pid_t former = parent.pid();
    for (int reading = 0; reading < 2; ++reading) EXPECT_EQ(currentParent(), former);
    parent.kill();
    parent.reap();
    EXPECT_NE(currentParent(), former);
    ::kill(grandchild, SIGKILL);
}

/// The share of `pid` in a second since the call before, nullopt when it is not listed.
std::optional<double> share(ProcessSampler& sampler, ProcessTable& table, pid_t pid, uint64_t second) {
    for (const auto& info : sampler.advance(table.read().value(), second * 1'000'000'000))
        if (info.pid == pid) return info.cpuPercent;
    return {};
}

TEST(ProcessTable, TellsAReusedPidFromTheProcessBefore) {
    // Asks the kernel for the very pid of a child that has ended.
    std::ofstream control("/proc/sys/kernel/ns_last_pid");
    if (!control) GTEST_SKIP() << "choosing a pid needs root";
    ProcessTable table(SystemRoot::host());
    ProcessSampler sampler(SystemRoot::host());
    pid_t pid = 0;
    {
        Child first([](char) { burnCpu(20'000'000); });
        first.tell('b');
        pid = first.pid();
        share(sampler, table, pid, 1);
    }
    control << pid - 1 << std::flush;
    Child second([](char) { burnCpu(40'000'000); });
    if (second.pid() != pid) GTEST_SKIP() << "another process took the pid";
    second.tell('b');
    EXPECT_EQ(share(sampler, table, pid, 2), 0) << "must not be measured against the process before";
    EXPECT_GE(byPid(table.read().value()).at(pid).cpuTimeNs, 40'000'000u);
}

TEST(ProcessTable, SharesAreExactWhereTicksRound) {
    for (const long burnNs : {3'000'000L, 13'700'000L, 250'000'000L}) {
        static long toBurn;
        toBurn = burnNs;
        Child child([](char) { burnCpu(toBurn); });
        child.settle();
        ProcessTable table(SystemRoot::host());
        ProcessSampler sampler(SystemRoot::host());
        share(sampler, table, child.pid(), 1);
        child.tell('b');
        child.settle();
        const double percent = static_cast<double>(burnNs) / 1e7; // of one second, as told
        EXPECT_NEAR(share(sampler, table, child.pid(), 2).value(), percent, percent * 0.02 + 0.02) << burnNs;
    }
}

TEST(ProcessTable, FindsEveryProcessWhileThousandsComeAndGo) {
    ProcessTable table(SystemRoot::host());
    table.read();
    std::vector<std::unique_ptr<Child>> children;
    const auto end = [&](size_t index) { children.erase(children.begin() + static_cast<long>(index)); };
    size_t step = 0;
    for (int round = 0; round < 100; ++round) {
        for (int i = 0; i < 50; ++i) {
            children.push_back(std::make_unique<Child>());
            if (++step % 3 != 0) end(step * 7919 % children.size());
        }
        std::set<pid_t> seen, expected;
        for (const auto& [pid, process] : ownChildren(table)) seen.insert(pid);
        for (const auto& child : children) expected.insert(child->pid());
        ASSERT_EQ(seen, expected) << "round " << round;
        if (children.size() > 300) children.clear();
    }
    children.clear();
    EXPECT_TRUE(ownChildren(table).empty());
}

TEST(ProcessTable, ReadsACapturedMachineFromItsFilesAlone) {
    TempRoot machine;
    machine.write("proc/stat", "cpu 1 2 3 4\nbtime 1000\nprocesses 9\n")
        .write("proc/7/stat", "7 (a) b) S 1 7 7 0 -1 0 0 0 0 0 150 50 0 0 20 0 3 0 250 1000 20 0 0 0\n")
        .write("proc/7/status",
               "Name:\ta) b\nUid:\t1\t1000\t1\t1\nVmRSS:\t 900 kB\nRssAnon:\t 500 kB\nVmSwap:\t 12 kB\n"
               "voluntary_ctxt_switches:\t5\nnonvoluntary_ctxt_switches:\t6\n")
        .write("proc/8/stat", "8 (cut")
        .folder("proc/9")
        .write("proc/self/stat", "nobody's");
    machine.link("proc/7/exe", "/opt/a tool/a) b (deleted)");
    ProcessTable table(machine.root());
    const auto processes = table.read().value();
    ASSERT_EQ(processes.size(), 1u) << "entries without a whole stat file are no processes";
    const auto& p = processes.front();
    EXPECT_EQ(joined(p.shortName, p.path, p.uid, p.memBytes / 1024, p.contextSwitches, p.cpuTimeNs, p.threads,
                     p.startTimeMicros, p.ioKnown),
              "a) b|/opt/a tool/a) b|1000|512|11|2000000000|3|1002500000|0")
        << "no io file: unknown, not zero";

    machine.remove("proc/7");
    EXPECT_TRUE(table.read().value().empty());
    machine.remove("proc");
    EXPECT_EQ(ProcessTable(machine.root()).read(), std::nullopt);
}

} // namespace
