#include "HelperKit/ProcessWire.h"

#include "support/Joined.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using namespace quarn;
using namespace std::string_view_literals;
using ProcessWire::decode;
using ProcessWire::encode;
using ProcessWire::Paths;
using ProcessWire::Revision;
using quarn::testing::joined;

HelperProcess process(int64_t pid, const char* path, std::optional<uint64_t> startTimeMicros) {
    constexpr uint64_t cpuTimeNs = uint64_t{1} << 63;
    return {pid, 1,         1000,       "näme",          "user", "sleeping", path, 12.5, 1 << 20,
            3,   cpuTimeNs, 1700000000, startTimeMicros, true,   5,          6,    7,    8};
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
    p.name = "n", p.user = "uß", p.state = "";
    const auto text = "QRP\2\x2A\0\0\0\0\0\0\0\1\0\0\0"            // header
                      "\4\3\2\1\x8\7\6\5\xC\xB\xA\x9\x10\xF\xE\xD" // pid, ppid, uid, threads
                      "\1\1\1\0\0\0\0\0\0\0\xC0\x21\0\0\0\0\0\0\0" // flags, CPU, memory
                      "\x22\0\0\0\0\0\0\0\x23\0\0\0\0\0\0\0"       // CPU time, start
                      "\x18\x17\x16\x15\x14\x13\x12\x11"           // start in µs
                      "\5\0\0\0\0\0\0\0\6\0\0\0\0\0\0\0"           // disk
                      "\7\0\0\0\0\0\0\0\x8\0\0\0\0\0\0\0"          // switches, energy
                      "\1\0\0\0n\3\0\0\0uß\0\0\0\0\2\0\0\0/p"sv;   // name, user, state, path
    const Data expected(text.begin(), text.end());
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
    p.pid = std::numeric_limits<int64_t>::min();
    p.ppid = -1;
    p.uid = std::numeric_limits<int64_t>::max();
    p.threads = 4294967296;
    p.cpuPercent = std::nan("");
    p.name = "\xFF";
    Paths sent, known;
    const auto got = decode(encode({{p}, -5}, sent), known);
    ASSERT_TRUE(got);
    const auto& q = got->processes[0];
    EXPECT_EQ(joined(got->totalThreads, q.pid, q.ppid, q.uid, q.threads, q.cpuPercent, q.name, q.energyNj,
                     q.startTimeMicros),
              "0|-2147483648|0|4294967295|4294967295|nan|\uFFFD|-|-");
    EXPECT_TRUE(sent.empty() && known.empty());
    EXPECT_EQ(decode(encode({{}, 7}, sent), known), (HelperProcessList{{}, 7}));
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
    Paths sent;
    const Data good = encode(sample, sent);
    const std::pair<size_t, uint8_t> cases[]{
        {0, 'q'},    {3, 0},  {3, 3},     // magic, revision
        {12, 2},     {12, 4}, {15, 0xFF}, // count
        {32, 2},     {33, 2}, {34, 2},    // flags
        {33, 0},                          // path left out that nobody knows
        {110, 0xFF},                      // length of the name
        {111, 0xFF},                      // UTF-8
    };
    for (const auto& [offset, byte] : cases) {
        Data bad = good;
        bad[offset] = byte;
        Paths known;
        EXPECT_EQ(decode(bad, known), std::nullopt) << offset;
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
