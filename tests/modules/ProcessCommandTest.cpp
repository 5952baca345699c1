#include "ui/modules/ProcessCommand.h"

#include "monitor/Processes.h"
#include "support/Child.h"

namespace quarn {
namespace {

using sysinfo::platform::ProcessAnswer;

ProcInfo named(int64_t pid, std::string_view name) {
    ProcInfo info = testing::processOf(pid, name);
    info.user = "root";
    info.startTimeMicros.reset();
    return info;
}

TEST(ProcessCommand, NamesWhomItIsAbout) {
    const std::vector<ProcInfo> one{named(12, "fire\nfox")};
    EXPECT_EQ(commandQuestion(forceToQuit(), one),
              "Force firefox (12) to quit?\n\nWhat is not saved is lost.");
    EXPECT_EQ(forceToQuit().confirm, ProcessCommand::Confirm::yes);
    std::vector<ProcInfo> many;
    for (int pid = 1; pid <= 10; ++pid) many.push_back(named(pid, "p"));
    const std::string question = commandQuestion(askToQuit(), many);
    EXPECT_TRUE(question.starts_with("Ask 10 processes to quit?\n\np (1)\np (2)"));
    EXPECT_TRUE(question.ends_with("p (8)\nand 2 more"));
}

TEST(ProcessCommand, SaysWhyNothingHappened) {
    const auto sshd = named(7, "sshd");
    EXPECT_EQ(answerSentence(askToQuit(), sshd, ProcessAnswer::done), "");
    EXPECT_EQ(answerSentence(askToQuit(), sshd, ProcessAnswer::gone),
              "sshd (7) has ended in the meantime. Nothing was done.");
    EXPECT_EQ(
        answerSentence(forceToQuit(), sshd, ProcessAnswer::denied),
        "sshd (7) could not be ended: it belongs to root, and only root or the administrator may do that.");
}

TEST(ProcessCommand, ReachesTheProcessThatWasShownOrNone) {
    testing::Child child;
    const auto root = sysinfo::SystemRoot::host();
    auto shown = named(child.pid(), "child");
    EXPECT_EQ(carryOut(forceToQuit(), shown, root, 0), ProcessAnswer::denied) << "its start is not known";
    shown.startTimeMicros = sysinfo::platform::processStartMicros(root, child.pid());
    const auto boot = sysinfo::platform::bootTime(root).value();
    EXPECT_EQ(carryOut(forceToQuit(), shown, root, boot + 5), ProcessAnswer::gone);
    EXPECT_EQ(carryOut(priorities().back(), shown, root, boot), ProcessAnswer::done);
    EXPECT_EQ(sysinfo::platform::processPriority(root, child.pid()), 19);
    EXPECT_EQ(carryOut(forceToQuit(), shown, root, boot), ProcessAnswer::done);
    int status = 0;
    ASSERT_EQ(::waitpid(child.pid(), &status, 0), child.pid());
    EXPECT_EQ(WTERMSIG(status), SIGKILL);
}

} // namespace
} // namespace quarn
