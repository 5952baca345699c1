#include "settings/Support.h"
#include "support/ManualQueue.h"

#include <sys/stat.h>
#include <thread>

namespace {

using namespace quarn;
using namespace quarn::testing;
namespace fs = std::filesystem;

TEST(SettingsStore, AWriteIsOnDiskAtOnceAndReadingCreatesNothing) {
    SettingsFolder folder;
    const fs::path file = folder.folder.path() / "not" / "yet" / "settings.toml";
    SettingsStore store(file);
    EXPECT_TRUE(store.values()->empty());
    store.remove("a");
    EXPECT_FALSE(fs::exists(file.parent_path().parent_path()));

    store.set("a", int64_t{3});
    EXPECT_EQ(SettingsStore(file).value("a"), SettingValue(int64_t{3}));
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0600));
    store.remove("a");
    EXPECT_EQ(SettingsStore(file).value("a"), std::nullopt);
}

TEST(SettingsStore, KeepsPermissionsCommentsAndForeignKeys) {
    SettingsFolder folder;
    folder.write("# mine\na = 1\n[later]\nversion = 9\n");
    ::chmod(folder.file().c_str(), 0640);
    WatchfulStore(folder).set("a", int64_t{2});
    EXPECT_EQ(folder.text(), "# mine\na = 2\n[later]\nversion = 9\n");
    EXPECT_EQ(fs::status(folder.file()).permissions(), fs::perms(0640));
    EXPECT_EQ(folder.names(), std::vector<std::string>{"settings.toml"});
}

TEST(SettingsStore, NoticesWhatOthersChange) {
    SettingsFolder folder;
    WatchfulStore store(folder);
    const auto now = fs::file_time_type::clock::now();
    for (int64_t i = 0; i < 9; ++i) { // in place, of one size, and faster than the file system's clock
        folder.write("a = " + std::to_string(i) + "\n");
        fs::last_write_time(folder.file(), now);
        EXPECT_EQ(store.value("a"), SettingValue(i));
    }
    fs::last_write_time(folder.file(), now - std::chrono::hours(1));
    EXPECT_EQ(store.value("a"), SettingValue(int64_t{8}));
    const fs::path away = folder.folder.path() / "away";
    fs::rename(folder.file(), away);
    EXPECT_EQ(store.value("a"), std::nullopt);
    fs::rename(away, folder.file());
    EXPECT_EQ(store.value("a"), SettingValue(int64_t{8}));
    WatchfulStore(folder).set("a", "other"); // replaced
    EXPECT_EQ(store.value("a"), SettingValue("other"));

    fs::remove(folder.file());
    SettingsStore patient(folder.file(), std::chrono::hours(1));
    EXPECT_TRUE(patient.values()->empty());
    folder.write("a = true\n");
    EXPECT_TRUE(patient.values()->empty());
    patient.refresh();
    EXPECT_EQ(patient.value("a"), SettingValue(true));
}

TEST(SettingsStore, TellsObserversOfEachChange) {
    SettingsFolder folder;
    WatchfulStore store(folder);
    ManualQueue queue;
    int calls = 0;
    auto subscription = store.observe(queue, [&] { ++calls; });

    store.set("a", true);
    EXPECT_EQ(calls, 0) << "called within the write";
    queue.run();
    EXPECT_EQ(calls, 1);
    const auto generation = store.generation();
    store.set("a", true);
    folder.write("# only a comment\na = true\n");
    EXPECT_EQ(store.generation(), generation);
    folder.write("a = false\n");
    EXPECT_GT(store.generation(), generation);
    queue.run();
    EXPECT_EQ(calls, 2);

    store.set("a", true);
    subscription.reset();
    queue.run();
    EXPECT_EQ(calls, 2) << "called after the subscription ended";
}

TEST(SettingsStore, ProgramsWritingAtOnceLoseNothing) {
    SettingsFolder folder;
    constexpr int programs = 6, keys = 15;
    std::vector<pid_t> pids;
    for (int program = 0; program < programs; ++program)
        pids.push_back(startProcess([&] {
            SettingsStore store(folder.file());
            for (int64_t key = 0; key < keys; ++key)
                store.set("p" + std::to_string(program) + "k" + std::to_string(key), key);
            return 0;
        }));
    for (const pid_t pid : pids) EXPECT_EQ(exitStatus(pid), 0);
    const auto values = SettingsStore(folder.file()).values();
    EXPECT_EQ(values->size(), size_t{programs * keys});
    for (const auto& [key, value] : *values)
        EXPECT_EQ(value, SettingValue(int64_t{std::stoi(key.substr(key.find('k') + 1))}));
}

TEST(SettingsStore, ThreadsShareOneStore) {
    SettingsFolder folder;
    WatchfulStore store(folder);
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&store, key = "t" + std::to_string(thread)] {
            for (int64_t i = 0; i < 10; ++i) {
                store.set(key, i);
                EXPECT_EQ(store.value(key), SettingValue(i)) << "an older content came back";
            }
        });
    threads.clear();
    EXPECT_EQ(store.values()->size(), 4u);
}

TEST(SettingsStore, WritesThroughASymbolicLink) {
    for (const auto state : {"existing", "dangling"}) {
        SettingsFolder folder;
        folder.folder.folder("dotfiles").link("chain", "dotfiles/quarn.toml").link("settings.toml", "chain");
        if (state == std::string("existing")) folder.folder.write("dotfiles/quarn.toml", "# kept\n");
        WatchfulStore store(folder);
        store.set("a", true);
        EXPECT_TRUE(fs::is_symlink(folder.file())) << state;
        EXPECT_NE(folder.text("dotfiles/quarn.toml").find("a = true\n"), std::string::npos) << state;
        folder.folder.write("dotfiles/quarn.toml", "a = 7\n");
        EXPECT_EQ(store.value("a"), SettingValue(int64_t{7})) << state;
    }
}

} // namespace
