#include "HelperKit/ProcessWire.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using namespace quarn;
using ProcessWire::decode;
using ProcessWire::encode;
using ProcessWire::Paths;
using ProcessWire::Revision;

constexpr int64_t most = std::numeric_limits<int64_t>::max();

HelperProcess process(int64_t pid, std::string path, std::optional<uint64_t> startTimeMicros) {
    HelperProcess p;
    p.pid = pid;
    p.ppid = 1;
    p.uid = 1000;
    p.name = "näme";
    p.user = "user";
    p.state = "sleeping";
    p.path = std::move(path);
    p.cpuPercent = 12.5;
    p.memBytes = 1 << 20;
    p.threads = 3;
    p.cpuTimeNs = uint64_t{1} << 63;
    p.startTime = 1700000000;
    p.startTimeMicros = startTimeMicros;
    p.accessible = true;
    p.diskRead = 5;
    p.diskWrite = 6;
    p.contextSwitches = 7;
    p.energyNj = 8;
    return p;
}

const HelperProcessList sample{{process(1, "/usr/lib/systemd/systemd", 1700000000000001),
                                process(2, "", 1700000000000002), process(3, "/opt/a", std::nullopt)},
                               42};

TEST(ProcessWire, LaysOutARecordFieldByField) {
    HelperProcess p = process(0x01020304, "/p", 0x1112131415161718);
    p.ppid = 0x05060708;
    p.uid = 0x090A0B0C;
    p.threads = 0x0D0E0F10;
    p.cpuPercent = -2; // 0xC000000000000000
    p.memBytes = 0x21;
    p.cpuTimeNs = 0x22;
    p.startTime = 0x23;
    p.name = "n", p.user = "us", p.state = "";
    const Data expected{
        'Q',  'R',  'P',  2,    42,   0,    0,    0,    0,    0,   0,   0, 1,    0,   0,
        0, // header
        4,    3,    2,    1,    8,    7,    6,    5,    0xC,  0xB, 0xA, 9, 0x10, 0xF, 0xE,
        0xD,           // pid, ppid, uid, threads
        1,    1,    1, // flags
        0,    0,    0,    0,    0,    0,    0,    0xC0, 0x21, 0,   0,   0, 0,    0,   0,
        0, // CPU, memory
        0x22, 0,    0,    0,    0,    0,    0,    0,    0x23, 0,   0,   0, 0,    0,   0,
        0,                                              // CPU time, start
        0x18, 0x17, 0x16, 0x15, 0x14, 0x13, 0x12, 0x11, // start in µs
        5,    0,    0,    0,    0,    0,    0,    0,    6,    0,   0,   0, 0,    0,   0,
        0, // disk
        7,    0,    0,    0,    0,    0,    0,    0,    8,    0,   0,   0, 0,    0,   0,
        0,                                                                               // switches, energy
        1,    0,    0,    0,    'n',  2,    0,    0,    0,    'u', 's', 0, 0,    0,   0, // name, user, state
        2,    0,    0,    0,    '/',  'p',                                               // path
    };
    Paths sent;
    EXPECT_EQ(encode({{p}, 42}, sent), expected);

    Data older = expected; // without the energy and its flag
    older[3] = 1;
    older.erase(older.begin() + 99, older.begin() + 107);
    older.erase(older.begin() + 34);
    sent.clear();
    EXPECT_EQ(encode({{p}, 42}, sent, Revision::withoutEnergy), older);

    Paths known;
    EXPECT_EQ(decode(expected, known), (HelperProcessList{{p}, 42}));
    p.energyNj.reset();
    EXPECT_EQ(decode(older, known), (HelperProcessList{{p}, 42}));
}

TEST(ProcessWire, EmptyListIsJustAHeader) {
    Paths sent, known;
    const Data data = encode({{}, 7}, sent);
    EXPECT_EQ(data.size(), 16U);
    EXPECT_EQ(decode(data, known), (HelperProcessList{{}, 7}));
}

TEST(ProcessWire, SendsEachPathOncePerProcessInstance) {
    Paths sent, known;
    const auto exchange = [&](const HelperProcessList& list) {
        const Data data = encode(list, sent);
        EXPECT_EQ(decode(data, known), list);
        EXPECT_EQ(sent, known);
        return data.size();
    };
    const auto cost = [](const std::string& path) { return 4 + path.size(); };
    auto list = sample;
    const size_t first = exchange(list);
    const size_t second = exchange(list);
    EXPECT_EQ(second, first - cost(sample.processes[0].path) - cost("")); // the third has no identity

    list.processes[0].path = "/usr/bin/other"; // it executed another program
    EXPECT_EQ(exchange(list), second + cost("/usr/bin/other"));
    list.processes[0].startTimeMicros = 5; // its pid was used again
    EXPECT_EQ(exchange(list), second + cost("/usr/bin/other"));
    list.processes.push_back(list.processes[0]); // twice in one list
    list.processes.back().path = "/late";
    EXPECT_GT(exchange(list), second);
    EXPECT_EQ(known.size(), 3U);
}

TEST(ProcessWire, AbsentAndExtremeValues) {
    HelperProcess p;
    p.startTimeMicros = std::nullopt;
    p.pid = std::numeric_limits<int64_t>::min();
    p.ppid = -1;
    p.uid = most;
    p.threads = 4294967296;
    p.cpuPercent = std::nan("");
    p.name = "\xFF";
    Paths sent, known;
    const auto got = decode(encode({{p}, -5}, sent), known);
    ASSERT_TRUE(got);
    EXPECT_EQ(got->totalThreads, 0);
    const auto& q = got->processes[0];
    EXPECT_EQ(q.pid, std::numeric_limits<int32_t>::min());
    EXPECT_EQ(q.ppid, 0);
    EXPECT_EQ(q.uid, 4294967295);
    EXPECT_EQ(q.threads, 4294967295);
    EXPECT_TRUE(std::isnan(q.cpuPercent));
    EXPECT_EQ(q.name, "\uFFFD");
    EXPECT_EQ(q.energyNj, std::nullopt);
    EXPECT_EQ(q.startTimeMicros, std::nullopt);
    EXPECT_TRUE(sent.empty() && known.empty());
}

TEST(ProcessWire, NoPartOfAMessageIsAMessage) {
    Paths sent;
    Data data = encode(sample, sent);
    Paths known{{{9, 9}, "/kept"}};
    const Paths before = known;
    for (size_t length = 0; length < data.size(); ++length)
        EXPECT_EQ(decode(DataView(data).first(length), known), std::nullopt) << length;
    data.push_back(0);
    EXPECT_EQ(decode(data, known), std::nullopt);
    EXPECT_EQ(known, before);
}

TEST(ProcessWire, RejectsWhatNoWriterWrites) {
    struct Case {
        size_t offset;
        uint8_t byte;
    };
    Paths sent;
    const Data good = encode(sample, sent);
    for (const auto& c : {
             Case{0, 'q'}, Case{3, 0}, Case{3, 3},     // magic, revision
             Case{12, 2}, Case{12, 4}, Case{15, 0xFF}, // count
             Case{32, 2}, Case{33, 2}, Case{34, 2},    // flags
             Case{33, 0},                              // path left out that nobody knows
             Case{110, 0xFF},                          // length of the name
             Case{111, 0xFF},                          // UTF-8
         }) {
        Data bad = good;
        bad[c.offset] = c.byte;
        Paths known;
        EXPECT_EQ(decode(bad, known), std::nullopt) << c.offset;
        EXPECT_TRUE(known.empty());
    }
}

TEST(ProcessWire, PathLeftOutMustBeKnownUnderTheVeryKey) {
    Paths sent, known, fresh;
    const Data first = encode(sample, sent);
    const Data second = encode(sample, sent);
    EXPECT_EQ(decode(second, fresh), std::nullopt); // as on a new connection
    ASSERT_TRUE(decode(first, known));
    EXPECT_EQ(decode(second, known), sample);

    constexpr size_t startTimeMicros = 16 + 16 + 3 + 32;
    Data later = second;
    later[startTimeMicros] ^= 1;
    EXPECT_EQ(decode(later, known), std::nullopt);
    Data anonymous = second;
    std::fill_n(anonymous.begin() + startTimeMicros, 8, uint8_t{0});
    EXPECT_EQ(decode(anonymous, known), std::nullopt);
}

} // namespace
