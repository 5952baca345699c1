#include "history/HistoryExport.h"
#include "history/LiveSupport.h"
#include "support/ManualQueue.h"
#include "support/TempRoot.h"

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <system_error>

namespace quarn::testing {
namespace {

namespace fs = std::filesystem;
using HistoryExport::Recorder;

TEST(HistoryExport, Numbers) {
    constexpr double inf = std::numeric_limits<double>::infinity();
    struct Case {
        std::optional<double> value;
        int decimals;
        bool comma;
        const char* text;
    };
    for (const Case& c :
         {Case{12.5, 2, false, "12.50"}, Case{12.5, 2, true, "12,50"}, Case{2.5e9, 0, true, "2500000000"},
          Case{0.00005, 4, false, "0.0001"}, Case{-1.25, 6, false, "-1.250000"}, Case{{}, 2, false, ""},
          Case{inf, 1, false, ""}, Case{-inf, 1, true, ""}, Case{HistorySample::notKnown, 0, false, ""}})
        EXPECT_EQ(HistoryExport::number(c.value, c.decimals, c.comma), c.text);
}

TEST(HistoryExport, Cells) {
    const std::tuple<const char*, const char*, const char*> cases[]{
        {"plain", ",", "plain"},
        {"a,b", ",", "\"a,b\""},
        {"a,b", ";", "a,b"},
        {"say \"hi\"", ",", "\"say \"\"hi\"\"\""},
        {"two\nlines", ",", "\"two\nlines\""},
        {"a\rb", ",", "\"a\rb\""},
        {"", ",", ""},
    };
    for (const auto& [text, separator, cell] : cases)
        EXPECT_EQ(HistoryExport::escapeCell(text, separator), cell);
}

TEST(HistoryExport, Lines) {
    HistorySample sample;
    EXPECT_EQ(HistoryExport::line(sample, ",", false), "1970-01-01T00:00:00.000Z,,,,0,0,,,,,,,,,,0,0,,0.0");
    sample.time = wallTime(1'714'566'896) + std::chrono::microseconds(789'999);
    sample.cpuTotal = 12.345;
    sample.cpuUser = 10;
    sample.cpuSystem = 2.344;
    sample.memUsed = 8'000'000'000;
    sample.diskRead = 1024.4;
    sample.sysWatts = 12.5;
    sample.gpuUtil = 0;
    sample.hotspotC = 61.25;
    sample.batteryPercent = 80;
    sample.processCount = 300;
    sample.threads = 2000;
    sample.top = {
        {1, "calm", 5, 0, true}, {2, "bu\xFFsy;\"one\"", 99.95, 0, true}, {3, "late", 99.95, 0, true}};
    EXPECT_EQ(HistoryExport::line(sample, ";", true),
              "2024-05-01T12:34:56.789Z;12,35;10,00;2,34;8000000000;0;1024;;;;12,50;;0,0;61,2;80;300;2000;"
              "\"bu\uFFFDsy;\"\"one\"\"\";100,0");
    const auto cells = [](std::string_view line) { return std::count(line.begin(), line.end(), ',') + 1; };
    EXPECT_EQ(cells(HistoryExport::header), 19);
    EXPECT_EQ(cells(HistoryExport::line(HistorySample(), ",", false)), 19);
}

const std::string header = std::string(HistoryExport::header) + "\n";

std::string lineAt(double seconds) { return HistoryExport::line(*sampleAt(seconds), ",", false) + "\n"; }

TEST(HistoryExport, WritesTheWholeHistoryOrNothing) {
    const TempRoot folder;
    const fs::path file = folder.path() / "quarn-history.csv";
    HistoryExport::writeCSV(file, {});
    EXPECT_EQ(readFile(file), header);
    HistoryExport::writeCSV(file, std::vector{sampleAt(liveNow), sampleAt(liveNow + 1)});
    EXPECT_EQ(readFile(file), header + lineAt(liveNow) + lineAt(liveNow + 1));
    for (const fs::path& bad : {folder.path() / "missing" / "x.csv", folder.path(), fs::path("/dev/full")}) {
        try {
            HistoryExport::writeCSV(bad, {});
            ADD_FAILURE() << bad;
        } catch (const std::system_error& error) {
            EXPECT_TRUE(std::string(error.what()).starts_with(bad.string() + ": ")) << error.what();
        }
    }
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1);
}

struct Recording : ::testing::Test {
    void record(std::initializer_list<double> times) {
        for (const double time : times) recorder.record(sampleAt(time));
        queue.run();
    }

    TempRoot folder;
    fs::path file = folder.path() / "quarn-recording.csv";
    ManualQueue queue;
    Recorder recorder{queue};
};

TEST_F(Recording, AppendsEverySampleUntilItIsStopped) {
    folder.write("quarn-recording.csv", "of yesterday");
    record({1});
    recorder.startRecording(file);
    EXPECT_TRUE(recorder.isRecording());
    EXPECT_EQ(readFile(file), header);
    record({2, 3});
    EXPECT_EQ(recorder.state().written, 2u);
    recorder.startRecording(folder.path() / "next.csv"); // ends the first
    record({4});
    recorder.stopRecording();
    record({5});
    EXPECT_FALSE(recorder.isRecording());
    EXPECT_EQ(readFile(file), header + lineAt(2) + lineAt(3));
    EXPECT_EQ(readFile(folder.path() / "next.csv"), header + lineAt(4));
    EXPECT_EQ(recorder.state().url, folder.path() / "next.csv");
    EXPECT_FALSE(recorder.state().lastError);
    for (const fs::path& bad : {folder.path() / "missing" / "x.csv", fs::path("/dev/full")}) {
        EXPECT_THROW(recorder.startRecording(bad), std::system_error);
        EXPECT_FALSE(recorder.isRecording());
    }
}

TEST_F(Recording, GoesOnOnceAFullDiskHasRoom) {
    ::signal(SIGXFSZ, SIG_IGN);
    recorder.startRecording(file);
    record({1});
    rlimit former{};
    ::getrlimit(RLIMIT_FSIZE, &former);
    const rlimit tight{fs::file_size(file) + 10, former.rlim_max}; // in the middle of a line
    ::setrlimit(RLIMIT_FSIZE, &tight);
    record({2, 3});
    ::setrlimit(RLIMIT_FSIZE, &former);
    EXPECT_TRUE(recorder.isRecording());
    EXPECT_EQ(recorder.state().lost, 2u);
    EXPECT_EQ(recorder.state().lastError, file.string() + ": File too large");
    record({4});
    EXPECT_EQ(readFile(file), header + lineAt(1) + lineAt(4));
    EXPECT_EQ(recorder.state().written, 2u);

    fs::remove(file); // nobody will read what is written now
    record({5});
    EXPECT_EQ(recorder.state().lost, 3u);
    EXPECT_EQ(recorder.state().lastError, file.string() + ": No such file or directory");
}

} // namespace
} // namespace quarn::testing
