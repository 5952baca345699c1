// What the program says of captured machines, kept under tests/golden and read in the diff when it changes.
#include "cli/Program.h"
#include "support/TempRoot.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>

namespace quarn::testing {
namespace {

struct Golden {
    const char* file; ///< under tests/golden; JSON is kept one value a line
    const char* root; ///< under the fixtures
    std::vector<std::string> arguments;
};

class GoldenOutput : public ::testing::TestWithParam<Golden> {};

std::string settled(const std::string& out, bool isJson) {
    if (!isJson) return out;
    auto document = nlohmann::ordered_json::parse(out);
    if (document.contains("timestamp")) document["timestamp"] = "now";
    return document.dump(1) + "\n";
}

TEST_P(GoldenOutput, IsAsKept) {
    const Golden& golden = GetParam();
    auto arguments = golden.arguments;
    arguments.insert(arguments.end(), {"--root", std::string(QUARN_FIXTURES "/") + golden.root});
    const Outcome outcome = runProgram(arguments);
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    const std::string path = std::string("tests/golden/") + golden.file;
    const std::string now = settled(outcome.out, path.ends_with(".json"));
    const char* remake = std::getenv("QUARN_REMAKE_GOLDEN");
    if (remake && *remake) std::ofstream(path) << now;
    EXPECT_EQ(now, readFile(path)) << "If this is meant: ./dev golden, and read the diff.";
}

INSTANTIATE_TEST_SUITE_P(
    CapturedMachines, GoldenOutput,
    ::testing::Values(
        Golden{"one-editor.snapshot.json", "hosts/one-editor", {"snapshot", "--json", "--interval", "0"}},
        Golden{"one-editor.processes.txt", "hosts/one-editor", {"processes", "--interval", "0"}},
        Golden{"one-editor.connections.txt", "hosts/one-editor", {"connections"}},
        Golden{"one-editor.interfaces.txt", "hosts/one-editor", {"interfaces", "--interval", "0"}},
        Golden{"mixed-disks.disks.json", "hosts/mixed-disks", {"disks", "--json", "--interval", "0"}},
        Golden{"eleven-chips.sensors.json", "sensors/eleven-chips", {"sensors", "--json"}},
        Golden{"eleven-chips.sensors.txt", "sensors/eleven-chips", {"sensors"}},
        Golden{"thinkpad-81.battery.txt", "battery/thinkpad-81", {"battery"}},
        Golden{"rx7900xtx.gpu.txt", "gpu/rx7900xtx", {"gpu"}}),
    [](const auto& named) {
        std::string name = named.param.file;
        std::replace_if(
            name.begin(), name.end(), [](char c) { return c == '-' || c == '.'; }, '_');
        return name;
    });

} // namespace
} // namespace quarn::testing
