#include "settings/Support.h"
#include "support/ManualQueue.h"

#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace quarn;
using namespace quarn::testing;
namespace fs = std::filesystem;
using StoreTest = SettingsTest;

TEST_F(StoreTest, AWriteIsOnDiskAtOnceAndReadingCreatesNothing) {
    const fs::path file = folder.path() / "not" / "yet" / "settings.toml";
    SettingsStore deep(file);
    EXPECT_TRUE(deep.values()->empty());
    deep.remove("a");
    EXPECT_TRUE(folder.names().empty());

    deep.set("a", int64_t{3});
    EXPECT_EQ(SettingsStore(file).value("a"), SettingValue(int64_t{3}));
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0600));
    deep.remove("a");
    EXPECT_EQ(SettingsStore(file).value("a"), std::nullopt);
}

TEST_F(StoreTest, NoticesWhatOthersChange) {
    const auto now = fs::file_time_type::clock::now();
    for (int64_t i = 0; i < 9; ++i) { // in place, of one size, and faster than the file system's clock
        folder.write("a = " + std::to_string(i) + "\n");
        fs::last_write_time(folder.file(), now);
        EXPECT_EQ(store.value("a"), SettingValue(i));
    }
    fs::last_write_time(folder.file(), now - std::chrono::hours(1));
    EXPECT_EQ(store.value("a"), SettingValue(int64_t{8}));
    const fs::path away = folder.path() / "away";
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

TEST_F(StoreTest, TellsObserversOfEachChange) {
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

TEST_F(StoreTest, ProgramsWritingAtOnceLoseNothing) {
    constexpr int programs = 6, keys = 15;
    std::vector<pid_t> pids;
    for (int program = 0; program < programs; ++program) {
        pids.push_back(::fork());
        if (pids.back() != 0) continue;
        SettingsStore own(folder.file());
        for (int64_t key = 0; key < keys; ++key)
            own.set("p" + std::to_string(program) + "k" + std::to_string(key), key);
        ::_exit(0);
    }
    for (const pid_t pid : pids) EXPECT_EQ(::waitpid(pid, nullptr, 0), pid);
    const auto values = SettingsStore(folder.file()).values();
    EXPECT_EQ(values->size(), size_t{programs * keys});
    for (const auto& [key, value] : *values)
        EXPECT_EQ(value, SettingValue(int64_t{std::stoi(key.substr(key.find('k') + 1))}));
}

TEST_F(StoreTest, ThreadsShareOneStore) {
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&, key = "t" + std::to_string(thread)] {
            for (int64_t i = 0; i < 10; ++i) {
                store.set(key, i);
                EXPECT_EQ(store.value(key), SettingValue(i)) << "an older content came back";
            }
        });
    threads.clear();
    EXPECT_EQ(store.values()->size(), 4u);
}

TEST_F(StoreTest, WritesThroughASymbolicLink) {
    folder.folder("dotfiles").link("chain", "dotfiles/quarn.toml").link("settings.toml", "chain");
    for (const std::string before : {"", "# kept\n"}) { // at first the link leads nowhere
        if (!before.empty()) folder.write("dotfiles/quarn.toml", before);
        store.set("a", true);
        EXPECT_TRUE(fs::is_symlink(folder.file()));
        EXPECT_EQ(folder.text("dotfiles/quarn.toml"), before + "a = true\n");
        folder.write("dotfiles/quarn.toml", "a = 7\n");
        EXPECT_EQ(store.value("a"), SettingValue(int64_t{7}));
    }
}

} // namespace
