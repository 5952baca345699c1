#include "settings/Support.h"

#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace {

using namespace quarn;
using namespace quarn::testing;
namespace fs = std::filesystem;
using Names = std::vector<std::string>;

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

TEST(SettingsFailure, ABrokenFileIsLeftUntilAWriteKeepsItAside) {
    SettingsFolder folder;
    folder.folder.write("settings.toml.broken-1", "from before");
    folder.write("# mine\na = 1\n");
    WatchfulStore store(folder);
    EXPECT_EQ(store.value("a"), SettingValue(int64_t{1}));

    folder.write("a = 2\nb = [\n");
    ::testing::internal::CaptureStderr();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(store.value("a"), SettingValue(int64_t{1})) << "the last known value";
    const std::string log = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(log.find("cannot be understood (line "), log.rfind("cannot be understood (line ")) << log;
    EXPECT_NE(log.find("cannot be understood (line "), std::string::npos) << log;
    EXPECT_EQ(folder.text(), "a = 2\nb = [\n");

    store.set("c", true);
    EXPECT_EQ(folder.text("settings.toml.broken-1"), "from before");
    EXPECT_EQ(folder.text("settings.toml.broken-2"), "a = 2\nb = [\n");
    EXPECT_EQ(folder.text(), "# mine\na = 1\nc = true\n");
}

TEST(SettingsFailure, ABrokenFileThatIsMendedIsReadAgain) {
    SettingsFolder folder;
    folder.write("a = \n");
    WatchfulStore store(folder);
    EXPECT_TRUE(store.values()->empty());
    folder.write("a = 1\n");
    EXPECT_EQ(store.value("a"), SettingValue(int64_t{1}));
    EXPECT_EQ(folder.names(), Names{"settings.toml"});
}

TEST(SettingsFailure, WhatIsNoReadableFileIsLeftAlone) {
    const auto make = [](SettingsFolder& folder, int kind) {
        if (kind == 0) folder.folder.folder("settings.toml");
        if (kind == 1) ::mkfifo(folder.file().c_str(), 0600);
        if (kind == 2) folder.folder.link("settings.toml", "settings.toml");
        if (kind == 3) {
            folder.write("a = 1\n");
            fs::resize_file(folder.file(), 5 << 20);
        }
    };
    for (int kind = 0; kind < 4; ++kind) {
        SettingsFolder folder;
        make(folder, kind);
        const auto before = fs::symlink_status(folder.file());
        WatchfulStore store(folder);
        EXPECT_TRUE(store.values()->empty()) << kind;
        EXPECT_NE(failureOf([&] { store.set("a", true); }).find("cannot be read"), std::string::npos) << kind;
        EXPECT_EQ(fs::symlink_status(folder.file()).type(), before.type()) << kind;
        EXPECT_EQ(folder.names(), Names{"settings.toml"}) << kind;
    }
}

TEST(SettingsFailure, AFileOfSomeoneElseIsLeftAlone) {
    SettingsFolder folder;
    folder.write("a = 1\n");
    ::chmod(folder.folder.path().c_str(), 0777);
    ::chmod(folder.file().c_str(), 0);
    const std::string message = failureAsUser(folder.file());
    EXPECT_NE(message.find("Permission denied"), std::string::npos) << message;
    ::chmod(folder.file().c_str(), 0600);
    EXPECT_EQ(folder.text(), "a = 1\n");
    EXPECT_EQ(folder.names(), Names{"settings.toml"});
}

TEST(SettingsFailure, AFolderThatIsReadOnlyFailsTheWrite) {
    SettingsFolder folder;
    folder.write("");
    ::chmod(folder.file().c_str(), 0644);
    ::chmod(folder.folder.path().c_str(), 0555);
    const std::string message = failureAsUser(folder.file());
    EXPECT_NE(message.find("cannot write"), std::string::npos) << message;
    EXPECT_NE(message.find("Permission denied"), std::string::npos) << message;
    ::chmod(folder.folder.path().c_str(), 0700);
    EXPECT_EQ(folder.names(), Names{"settings.toml"});
}

TEST(SettingsFailure, AWriteThatIsCutShortLeavesTheOldFileWhole) {
    for (const std::string before : {"# old\n", "broken =\n"}) {
        SettingsFolder folder;
        folder.write(before);
        ::chmod(folder.file().c_str(), 0644);
        ::chmod(folder.folder.path().c_str(), 0777);
        const std::string message = failureAsUser(folder.file(), [] {
            std::signal(SIGXFSZ, SIG_IGN);
            const rlimit limit{1000, 1000}; // stands for a full disk: the write stops half-way
            ::setrlimit(RLIMIT_FSIZE, &limit);
        });
        EXPECT_NE(message.find("The stored settings are unchanged"), std::string::npos) << message;
        EXPECT_EQ(folder.text(), before);
        EXPECT_EQ(folder.names(), Names{"settings.toml"});
    }
}

TEST(SettingsFailure, AUserWithoutAHomeIsTold) {
    SettingsStore store{fs::path()};
    EXPECT_TRUE(store.values()->empty());
    EXPECT_NE(failureOf([&] { store.set("a", true); }).find("no home"), std::string::npos);
}

} // namespace
