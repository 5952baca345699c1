// What is asked and done about one process, on real children.
#include "core/Support.h"
#include "core/linux/ProcessFiles.h"
#include "core/platform.h"
#include "support/Child.h"

#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace quarn::testing;
using Words = std::vector<std::string>;

const SystemRoot host = SystemRoot::host();

ProcessInstance instanceOf(pid_t pid) {
    return {pid, processStartMicros(host, pid).value(), bootTime(host).value()};
}

/// What happened to the child, as waitpid tells it.
int statusOf(pid_t pid, int options) {
    int status = 0;
    return ::waitpid(pid, &status, options) == pid ? status : -1;
}

TEST(ProcessCommands, CommandLines) {
    using namespace std::string_literals;
    const std::pair<std::string, Words> cases[]{
        {"", {}},
        {"\0\0"s, {}},
        {"bash\0"s, {"bash"}},
        {"grep\0-e\0\0file name\0"s, {"grep", "-e", "", "file name"}},
        {"postgres: writer process\0\0\0\0"s, {"postgres: writer process"}},
        {"no end", {"no end"}},
    };
    for (const auto& [text, words] : cases) EXPECT_EQ(parseCommandLine(text), words);
}

TEST(ProcessCommands, ReadsACapturedProcess) {
    TempRoot root;
    root.write("proc/7/cmdline", {"sleep\0\65\0", 8});
    root.link("proc/7/cwd", "/srv/data");
    root.write("proc/7/stat", "7 (a b) S 1 7 7 0 -1 0 0 0 0 0 0 0 0 0 20 -5 1 0 42 0 0");
    EXPECT_EQ(processCommandLine(root.root(), 7), Words({"sleep", "5"}));
    EXPECT_EQ(processWorkingFolder(root.root(), 7), "/srv/data");
    EXPECT_EQ(processPriority(root.root(), 7), -5);
    EXPECT_FALSE(processCommandLine(root.root(), 8));
    EXPECT_FALSE(processWorkingFolder(root.root(), 8));
}

TEST(ProcessCommands, SignalsReachTheProcess) {
    Child child;
    const auto instance = instanceOf(child.pid());
    EXPECT_EQ(signalProcess(host, instance, SIGSTOP), ProcessAnswer::done);
    EXPECT_TRUE(WIFSTOPPED(statusOf(child.pid(), WUNTRACED)));
    EXPECT_EQ(signalProcess(host, instance, SIGCONT), ProcessAnswer::done);
    EXPECT_TRUE(WIFCONTINUED(statusOf(child.pid(), WCONTINUED)));
    EXPECT_EQ(signalProcess(host, instance, SIGTERM), ProcessAnswer::done);
    EXPECT_EQ(WTERMSIG(statusOf(child.pid(), 0)), SIGTERM);
    EXPECT_EQ(signalProcess(host, instance, SIGTERM), ProcessAnswer::gone);
    EXPECT_EQ(setProcessPriority(host, instance, 5), ProcessAnswer::gone);
}

TEST(ProcessCommands, AnotherProcessWithThePidIsNeverHit) {
    Child child;
    auto former = instanceOf(child.pid());
    former.startTimeMicros -= 10'000;
    EXPECT_EQ(signalProcess(host, former, SIGKILL), ProcessAnswer::gone);
    EXPECT_EQ(setProcessPriority(host, former, 5), ProcessAnswer::gone);
    EXPECT_EQ(statusOf(child.pid(), WNOHANG), -1) << "the child still runs";
    EXPECT_EQ(processPriority(host, child.pid()), ::getpriority(PRIO_PROCESS, 0));
    for (const int group : {0, -1, -child.pid()})
        EXPECT_EQ(signalProcess(host, {group, 0, 0}, SIGKILL), ProcessAnswer::failed);
}

TEST(ProcessCommands, ACapturedMachineGetsNoSignals) {
    TempRoot root;
    Child child;
    EXPECT_EQ(signalProcess(root.root(), instanceOf(child.pid()), SIGKILL), ProcessAnswer::failed);
    EXPECT_EQ(statusOf(child.pid(), WNOHANG), -1);
}

TEST(ProcessCommands, PriorityIsThatOfAllThreads) {
    Child child;
    const int wanted = std::min(::getpriority(PRIO_PROCESS, 0) + 3, 19);
    EXPECT_EQ(setProcessPriority(host, instanceOf(child.pid()), wanted), ProcessAnswer::done);
    EXPECT_EQ(processPriority(host, child.pid()), wanted);
}

TEST(ProcessCommands, OthersAreDenied) {
    const auto parent = instanceOf(::getpid());
    const pid_t child = ::fork();
    if (child == 0) {
        constexpr uid_t nobody = 65534;
        if (::getuid() == 0 && ::setresuid(nobody, nobody, nobody) != 0) ::_exit(2);
        const auto target = ::getuid() == nobody ? parent : instanceOf(1);
        ::_exit(signalProcess(host, target, SIGWINCH) == ProcessAnswer::denied ? 0 : 1);
    }
    EXPECT_EQ(WEXITSTATUS(statusOf(child, 0)), 0);
}

} // namespace
