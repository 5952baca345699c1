#include "SensorSupport.h"

#include <cmath>

namespace {

using namespace quarn::testing;

const std::string folder = "sys/devices/platform/applesmc.768";

/// The Apple SMC driver's key files: a cursor that is written, and what lies under it.
struct AppleKeyFiles {
    struct Key {
        std::string name, type, data;
    };

    AppleKeyFiles() {
        root.files(folder, "key_at_index=0;name=applesmc;key_count=" + std::to_string(keys.size()))
            .files("sys/class/hwmon/hwmon0",
                   "name=applesmc;temp1_input=61000;temp1_label=TC0P;fan1_input=1800");
    }

    SensorMachine::Hook reader() {
        return [this](auto& attribute, auto buffer, const auto& read) -> long {
            const std::string name = attribute.path.substr(attribute.path.rfind('/') + 1);
            if (!name.starts_with("key_at_index")) return read(attribute, buffer);
            const Key& key = keys.at(cursor);
            const std::string text = name == "key_at_index_name"   ? key.name + "\n"
                                     : name == "key_at_index_type" ? key.type + "\n"
                                     : name == "key_at_index_data" ? key.data
                                                                   : std::to_string(key.data.size()) + "\n";
            if (name == "key_at_index_data" && isStolen) cursor = 0; // somebody else moves the cursor
            return text.copy(buffer.data(), buffer.size());
        };
    }
    std::function<bool(const std::string&, std::string_view)> writer() {
        return [this](const std::string& path, std::string_view text) {
            EXPECT_TRUE(path.ends_with("/key_at_index"));
            cursor = static_cast<size_t>(std::stoi(std::string(text)));
            return true;
        };
    }

    TempRoot root;
    size_t cursor = 0;
    bool isStolen = false;
    std::vector<Key> keys{{"#KEY", "ui32", std::string("\0\0\0\6", 4)},
                          {"TC0P", "sp78", std::string("\x2a\x80", 2)},
                          {"F0Ac", "fpe2", std::string("\x1f\x40", 2)},
                          {"PSTR", "flt ", std::string("\0\0\x28\x42", 4)},
                          {"RBr ", "ch8*", "j680"},
                          {"Huge", "ch8*", std::string(40, 'x')}};
};

TEST(AppleKeys, ComeBeforeTheHwmonFolderWithTheirOwnTypes) {
    AppleKeyFiles files;
    SensorMachine machine(files.root.root(), files.reader(), files.writer());
    EXPECT_EQ(machine.temperatures(), (Readings{{"TC0P", 42.5}}));
    EXPECT_EQ(machine.of('F'), (Readings{{"F0Ac", 2000}}));
    EXPECT_EQ(machine.sensors.value("PSTR"), 42);
    EXPECT_TRUE(std::isnan(machine.sensors.value("RBr "))) << "a text";

    files.isStolen = true;
    machine.pass(1);
    EXPECT_TRUE(std::isnan(machine.sensors.value("TC0P"))) << "data of another key";
    files.isStolen = false;
    machine.pass(2);
    EXPECT_EQ(machine.sensors.value("TC0P"), 42.5);
}

TEST(AppleKeys, AnOrdinaryUserGetsTheHwmonFolder) {
    AppleKeyFiles files;
    SensorMachine machine(files.root.root(), files.reader());
    EXPECT_EQ(machine.temperatures(), (Readings{{"TC0P", 61}})) << "under the controller's own key";
    EXPECT_EQ(machine.of('F'), (Readings{{"F0Ac", 1800}}));
}

} // namespace
