#include "HelperKit/XPCPayload.h"

#include <cmath>
#include <limits>

namespace {

using namespace quarn;

template <class Record>
std::string encoded(const Record& record) {
    const Data data = XPCPayload::encode(record);
    return {data.begin(), data.end()};
}

template <class Record>
std::optional<Record> decoded(std::string_view json) {
    return XPCPayload::decode<Record>(DataView(reinterpret_cast<const uint8_t*>(json.data()), json.size()));
}

template <class Record>
void expectRoundTrip(const Record& record, const std::string& json) {
    EXPECT_EQ(encoded(record), json);
    EXPECT_EQ(decoded<Record>(json), record);
}

const HelperPower power{1.5, 10, 6.25, 2, 0, 1, true, 800, 4200, 300, 8.25, "rapl"};

TEST(XPCPayload, DocumentsCarryTheFieldsUnderTheirNames) {
    expectRoundTrip(
        HelperProcessList{{{1, 2, 3, "n", "u", "s", "/p", 4.5, 5, 6, 7, 8, 9, true, 10, 11, 12, 13}}, 14},
        R"({"processes":[{"accessible":true,"contextSwitches":12,"cpuPercent":4.5,"cpuTimeNs":7,)"
        R"("diskRead":10,"diskWrite":11,"energyNj":13,"memBytes":5,"name":"n","path":"/p","pid":1,)"
        R"("ppid":2,"startTime":8,"startTimeMicros":9,"state":"s","threads":6,"uid":3,"user":"u"}],)"
        R"("totalThreads":14})");
    expectRoundTrip(
        std::vector<SocketRecord>{{1, "n", 6, 4, "127.0.0.1", 80, "::1", 2, 10, 18446744073709551615U}},
        R"([{"ipVersion":4,"local":"127.0.0.1","localPort":80,"name":"n","pid":1,"proto":6,)"
        R"("remote":"::1","remotePort":2,"socketID":18446744073709551615,"tcpState":10}])");
    expectRoundTrip(
        power, R"({"aneWatts":0.0,"available":true,"combinedWatts":8.25,"cpuWatts":6.25,"dramWatts":1.0,)"
               R"("eFreqMHz":800.0,"gpuFreqMHz":300.0,"gpuWatts":2.0,"pFreqMHz":4200.0,"sampledAt":1.5,)"
               R"("source":"rapl","sysWatts":10.0})");
    expectRoundTrip(VersionInfo{1, 2, 3, 4, "2024-05-06"},
                    R"({"build":4,"buildDate":"2024-05-06","major":1,"minor":2,"patch":3})");
    expectRoundTrip(CommandResult{"out", "\"err\"\n", -9, true, "no such file", true},
                    R"({"exitCode":-9,"launchError":"no such file","outputTruncated":true,)"
                    R"("stderr":"\"err\"\n","stdout":"out","timedOut":true})");
}

TEST(XPCPayload, AbsentFieldsAreLeftOutAndMayBeNull) {
    for (const auto& json : {encoded(SocketRecord{}), encoded(HelperProcess{}), encoded(HelperPower{}),
                             encoded(CommandResult{})})
        for (const char* key :
             {"remote\"", "startTimeMicros", "energyNj", "sampledAt", "launchError", "null"})
            EXPECT_EQ(json.find(key), std::string::npos) << json;
    EXPECT_EQ(decoded<SocketRecord>(encoded(SocketRecord{})), SocketRecord{});
    EXPECT_EQ(
        decoded<CommandResult>(R"({"exitCode":0,"launchError":null,"outputTruncated":false,"stderr":"",)"
                               R"("stdout":"","timedOut":false,"of the future":[{}]})"),
        CommandResult{});
}

TEST(XPCPayload, WhatIsNotTheRecordIsNothing) {
    const auto version = [](const std::string& major, const std::string& last) {
        return decoded<VersionInfo>("{\"major\":" + major + R"(,"minor":2,"patch":3,"build":4)" + last);
    };
    EXPECT_TRUE(version("1", R"(,"buildDate":""})"));
    for (const char* major : {"\"1\"", "true", "1.5", "9223372036854775808", "1e999"})
        EXPECT_FALSE(version(major, R"(,"buildDate":""})")) << major;
    for (const char* last : {"}", R"(,"buildDate":null})", R"(,"buildDate":5})", R"(,"buildDate":""} x)",
                             ",\"buildDate\":\"\xFF\"}"})
        EXPECT_FALSE(version("1", last)) << last;
    for (const char* json : {"", "null", "[]", "{}", "{\"major\":", "nonsense", "[[[[[["})
        EXPECT_FALSE(decoded<VersionInfo>(json)) << json;
    EXPECT_FALSE(decoded<HelperProcessList>(R"({"processes":[{}],"totalThreads":1})"));
    EXPECT_FALSE(decoded<std::vector<SocketRecord>>("[1]"));
    // exitCode has 32 bits, socketID no sign, launchError is a text or absent
    std::string socket = encoded(SocketRecord{});
    EXPECT_FALSE(decoded<SocketRecord>(socket.replace(socket.find("socketID") + 10, 1, "-1")));
    for (const std::string fields : {R"("exitCode":2147483648)", R"("exitCode":0,"launchError":false)"})
        EXPECT_FALSE(decoded<CommandResult>(
            "{" + fields + R"(,"outputTruncated":false,"stderr":"","stdout":"","timedOut":false})"));
}

TEST(XPCPayload, EveryTruncationIsNothing) {
    const std::string json = encoded(power);
    for (size_t length = 0; length < json.size(); ++length)
        EXPECT_FALSE(decoded<HelperPower>(json.substr(0, length)));
}

TEST(XPCPayload, WhatJSONCannotSay) {
    HelperPower p = power;
    p.sampledAt = NAN;
    p.source = "a\xFF";
    const auto got = decoded<HelperPower>(encoded(p));
    ASSERT_TRUE(got);
    EXPECT_EQ(got->sampledAt, std::nullopt);
    EXPECT_EQ(got->source, "a\uFFFD");
    p.sysWatts = std::numeric_limits<double>::infinity();
    EXPECT_EQ(decoded<HelperPower>(encoded(p)), std::nullopt);
}

} // namespace
