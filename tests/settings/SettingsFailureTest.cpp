#include "settings/Support.h"

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

namespace {

using namespace quarn;
using namespace quarn::testing;
namespace fs = std::filesystem;
using Names = std::vector<std::string>;
using FailureTest = SettingsTest;

/// The message that a write fails with for an ordinary user; root may write everywhere, so it becomes nobody
/// first.
std::string failureAsUser(
    const fs::path& file, const std::function<void()>& before = [] {}) {
    int pipe[2];
    if (::pipe(pipe) != 0) return "no pipe";
    const pid_t pid = startProcess([&] {
        if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) return 1;
        before();
        SettingsStore store(file);
        const bool empty = store.values()->empty();
        const std::string message = failureOf([&] { store.set("b", std::string(4096, 'x')); });
        return ::write(pipe[1], message.data(), message.size()) > 0 && empty ? 0 : 2;
    });
    ::close(pipe[1]);
    std::string message(4096, '\0');
    message.resize(
        static_cast<size_t>(std::max<ssize_t>(0, ::read(pipe[0], message.data(), message.size()))));
    ::close(pipe[0]);
    EXPECT_EQ(exitStatus(pid), 0);
    return message;
}

TEST_F(FailureTest, ABrokenFileIsLeftUntilAWriteKeepsItAside) {
    folder.write("settings.toml.broken-1", "from before");
    folder.write("# mine\na = 1\n");
    EXPECT_EQ(store.value("a"), SettingValue(int64_t{1}));

    folder.write("a = 2\nb = [\n");
    ::testing::internal::CaptureStderr();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(store.value("a"), SettingValue(int64_t{1})) << "the last known value";
    const std::string log = ::testing::internal::GetCapturedStderr();
    EXPECT_TRUE(contains(log, "cannot be understood (line "));
    EXPECT_EQ(log.find("cannot be understood"), log.rfind("cannot be understood")) << log;
    EXPECT_EQ(folder.text(), "a = 2\nb = [\n");
    EXPECT_TRUE(contains(store.problem(), "cannot be understood (line "));

    store.set("c", true);
    EXPECT_EQ(store.problem(), "");
    EXPECT_EQ(folder.text("settings.toml.broken-1"), "from before");
    EXPECT_EQ(folder.text("settings.toml.broken-2"), "a = 2\nb = [\n");
    EXPECT_EQ(folder.text(), "# mine\na = 1\nc = true\n");
}

TEST_F(FailureTest, ABrokenFileThatIsMendedIsReadAgain) {
    folder.write("a = \n");
    EXPECT_TRUE(store.values()->empty());
    folder.write("a = 1\n");
    EXPECT_EQ(store.value("a"), SettingValue(int64_t{1}));
    EXPECT_EQ(folder.names(), Names{"settings.toml"});
}

TEST_F(FailureTest, WhatIsNoReadableFileIsLeftAlone) {
    const std::function<void()> kinds[]{[&] { folder.folder("settings.toml"); },
                                        [&] { ::mkfifo(folder.file().c_str(), 0600); },
                                        [&] { folder.link("settings.toml", "settings.toml"); },
                                        [&] {
                                            folder.write("a = 1\n");
                                            fs::resize_file(folder.file(), 5 << 20);
                                        }};
    for (const auto& make : kinds) {
        folder.remove("settings.toml");
        make();
        const auto before = fs::symlink_status(folder.file()).type();
        SCOPED_TRACE(static_cast<int>(before));
        EXPECT_TRUE(store.values()->empty());
        EXPECT_TRUE(contains(failureOf([&] { store.set("a", true); }), "cannot be read"));
        EXPECT_EQ(fs::symlink_status(folder.file()).type(), before);
        EXPECT_EQ(folder.names(), Names{"settings.toml"});
    }
}

TEST_F(FailureTest, WithoutPermissionNothingIsTouched) {
    struct Case {
        mode_t ofFolder, ofFile;
        const char* says;
    };
    folder.write("# kept\n");
    for (const auto& c : {Case{0555, 0644, "cannot write"}, Case{0777, 0, "cannot be read"}}) {
        ::chmod(folder.path().c_str(), c.ofFolder);
        ::chmod(folder.file().c_str(), c.ofFile);
        const std::string message = failureAsUser(folder.file());
        EXPECT_TRUE(contains(message, c.says));
        EXPECT_TRUE(contains(message, "Permission denied"));
        ::chmod(folder.path().c_str(), 0700);
        ::chmod(folder.file().c_str(), 0600);
        EXPECT_EQ(folder.text(), "# kept\n");
        EXPECT_EQ(folder.names(), Names{"settings.toml"});
    }
}

TEST_F(FailureTest, AWriteThatIsCutShortLeavesTheOldFileWhole) {
    ::chmod(folder.path().c_str(), 0777);
    for (const std::string before : {"# old\n", "broken =\n"}) {
        folder.write(before);
        ::chmod(folder.file().c_str(), 0644);
        const std::string message = failureAsUser(folder.file(), [] {
            std::signal(SIGXFSZ, SIG_IGN);
            const rlimit limit{1000, 1000}; // stands for a full disk: the write stops half-way
            ::setrlimit(RLIMIT_FSIZE, &limit);
        });
        EXPECT_TRUE(contains(message, "The stored settings are unchanged"));
        EXPECT_EQ(folder.text(), before);
        EXPECT_EQ(folder.names(), Names{"settings.toml"});
    }
}

TEST_F(FailureTest, AUserWithoutAHomeIsTold) {
    SettingsStore homeless{fs::path()};
    EXPECT_TRUE(homeless.values()->empty());
    EXPECT_TRUE(contains(failureOf([&] { homeless.set("a", true); }), "no home"));
}

} // namespace
