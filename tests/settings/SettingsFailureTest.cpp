#include "settings/Support.h"

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace quarn;
using namespace quarn::testing;
namespace fs = std::filesystem;
using Names = std::vector<std::string>;
using FailureTest = SettingsTest;

/// The message that a write fails with for an ordinary user; root may write everywhere, so it becomes nobody
/// meanwhile.
std::string failureAsUser(const fs::path& file) {
    const bool isRoot = ::geteuid() == 0;
    EXPECT_TRUE(!isRoot || (::setegid(65534) == 0 && ::seteuid(65534) == 0));
    SettingsStore store(file);
    EXPECT_TRUE(store.values()->empty());
    const std::string message = failureOf([&] { store.set("b", std::string(4096, 'x')); });
    EXPECT_TRUE(!isRoot || (::seteuid(0) == 0 && ::setegid(0) == 0));
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
    folder.write("# kept\n");
    for (const auto& [ofFolder, ofFile, says] :
         {std::tuple{0555, 0644, "cannot write"}, {0777, 0, "cannot be read"}}) {
        ::chmod(folder.path().c_str(), static_cast<mode_t>(ofFolder));
        ::chmod(folder.file().c_str(), static_cast<mode_t>(ofFile));
        const std::string message = failureAsUser(folder.file());
        EXPECT_TRUE(contains(message, says));
        EXPECT_TRUE(contains(message, "Permission denied"));
        ::chmod(folder.path().c_str(), 0700);
        ::chmod(folder.file().c_str(), 0600);
        EXPECT_EQ(folder.text(), "# kept\n");
        EXPECT_EQ(folder.names(), Names{"settings.toml"});
    }
}

TEST_F(FailureTest, AWriteThatIsCutShortLeavesTheOldFileWhole) {
    ::chmod(folder.path().c_str(), 0777);
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit usual{};
    ::getrlimit(RLIMIT_FSIZE, &usual);
    const rlimit tight{1000, usual.rlim_max}; // stands for a full disk: the write stops half-way
    for (const std::string before : {"# old\n", "broken =\n"}) {
        folder.write(before);
        ::chmod(folder.file().c_str(), 0644);
        ::setrlimit(RLIMIT_FSIZE, &tight);
        const std::string message = failureAsUser(folder.file());
        ::setrlimit(RLIMIT_FSIZE, &usual);
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
