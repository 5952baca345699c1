// A database whose disk fails, or whose program is killed, at any moment.
#include "history/MetricsStore.h"
#include "history/Support.h"
#include "support/FaultVfs.h"

#include <csignal>
#include <random>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quarn::testing {
namespace {

/// The minute with this number, and an application hour that grows with it.
MetricsBatch batchOf(int64_t number) {
    MetricsBatch batch;
    batch.system[fullHour + number * 60] = minuteOf(1 + number);
    for (const char* app : {"/a", "/b", "/c"})
        batch.apps[roundedDown(fullHour + number * 60, hourSeconds)][app] = appOf(1);
    return batch;
}

/// Every batch is there as a whole or not at all; answers how many are.
int64_t wholeBatches(const HistoryFolder& folder) {
    const auto minutes = folder.number("SELECT COUNT(*) FROM system_1m");
    const auto sum = folder.number("SELECT COALESCE(SUM(disk_read_bytes), 0) FROM system_1m");
    EXPECT_EQ(sum, minutes * (minutes + 1) / 2);
    for (const char* app : {"/a", "/b", "/c"})
        EXPECT_EQ(folder.number("SELECT COALESCE(SUM(disk_write_bytes), 0) FROM app_1h WHERE app_id = '" +
                                std::string(app) + "'"),
                  minutes);
    return minutes;
}

constexpr int64_t batches = 20;

/// Opens the database and does all that a recorder ever does to it. Answers how many batches it wrote before
/// something failed.
int64_t recordUntilItFails(const HistoryFolder& folder) {
    int64_t written = 0;
    try {
        MetricsStore store(folder.file());
        for (; written < batches; ++written) {
            store.write(batchOf(written));
            if (written % 10 == 9) {
                store.maintain(wallTime(fullHour + written * 60));
                store.vacuum(wallTime(fullHour + written * 60));
            }
        }
    } catch (const SQLiteError&) {
    }
    return written;
}

TEST(MetricsFaults, NoFailedWriteHarmsTheDatabase) {
    FaultVfs vfs;
    int changes = 0;
    {
        const HistoryFolder folder;
        ASSERT_EQ(recordUntilItFails(folder), batches);
        changes = vfs.takeChanges();
    }
    ASSERT_GT(changes, 100);
    for (const auto fault :
         {FaultVfs::Fault::ioError, FaultVfs::Fault::tornWrite, FaultVfs::Fault::diskFull}) {
        int failed = 0;
        for (int at = 0; at < changes; ++at) {
            SCOPED_TRACE(::testing::Message() << "fault " << static_cast<int>(fault) << " at " << at);
            const HistoryFolder folder;
            vfs.failAfter(at, fault);
            const auto written = recordUntilItFails(folder);
            failed += written < batches;
            vfs.heal();
            ASSERT_TRUE(folder.isSound());
            MetricsStore store(folder.file()); // goes on from there
            const auto kept = wholeBatches(folder);
            // A commit whose last write failed may be found whole afterwards.
            EXPECT_GE(kept, written);
            EXPECT_LE(kept, written + 1);
            store.write(batchOf(kept));
            store.maintain(wallTime(fullHour + 200 * 60));
            EXPECT_EQ(wholeBatches(folder), kept + 1);
        }
        EXPECT_GT(failed, changes * 9 / 10) << "all but what is done when the database is closed";
    }
}

TEST(MetricsFaults, AStoreGoesOnWhenTheDiskHasRoomAgain) {
    FaultVfs vfs;
    const HistoryFolder folder;
    MetricsStore store(folder.file());
    store.write(batchOf(0));
    for (int at = 0; at < 12; ++at) {
        vfs.failAfter(at, FaultVfs::Fault::diskFull);
        try {
            store.write(batchOf(1));
            store.maintain(wallTime(fullHour + 7200));
            store.vacuum(wallTime(fullHour + 7200));
        } catch (const SQLiteError& error) {
            EXPECT_FALSE(error.isBroken());
        }
        vfs.heal();
        store.write({{}, {{fullHour, {{"/d", appOf(1)}}}}});
    }
    EXPECT_EQ(folder.number("SELECT disk_write_bytes FROM app_1h WHERE app_id = '/d'"), 12);
    EXPECT_TRUE(folder.isSound());
}

/// Records in a process of its own, minute after minute, and tells of each.
pid_t startRecorder(const HistoryFolder& folder, int told, int64_t first) {
    const pid_t pid = ::fork();
    if (pid != 0) return pid;
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    MetricsStore store(folder.file());
    for (int64_t number = first;; ++number) {
        store.write(batchOf(number));
        if (number % 5 == 4) store.maintain(wallTime(fullHour + number * 60));
        if (::write(told, &number, sizeof number) != sizeof number) ::_exit(1);
    }
}

TEST(MetricsFaults, AKilledRecorderLosesAtMostTheLastMinute) {
    const HistoryFolder folder;
    std::minstd_rand random(3);
    int64_t kept = 0;
    for (int round = 0; round < 200; ++round) {
        int channel[2];
        ASSERT_EQ(::pipe(channel), 0);
        const pid_t recorder = startRecorder(folder, channel[1], kept);
        ::close(channel[1]);
        int64_t told = kept - 1;
        for (auto count = random() % 4; count > 0; --count)
            ASSERT_EQ(::read(channel[0], &told, sizeof told), static_cast<ssize_t>(sizeof told));
        for (auto spin = random() % 200'000; spin > 0; --spin) (void)random();
        ::kill(recorder, SIGKILL);
        ::waitpid(recorder, nullptr, 0);
        while (::read(channel[0], &told, sizeof told) > 0) {
        }
        ::close(channel[0]);

        ASSERT_TRUE(folder.isSound());
        { MetricsStore store(folder.file()); } // it may have been killed before the tables were there
        const auto found = wholeBatches(folder);
        EXPECT_GE(found, told + 1);
        EXPECT_LE(found, told + 2);
        kept = found;
    }
    EXPECT_GT(kept, 0);
}

} // namespace
} // namespace quarn::testing
