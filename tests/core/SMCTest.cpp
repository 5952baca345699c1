// The rules on top of a controller: enumeration, caches of key information, filters and limits.
#include "core/SMC.h"
#include "SensorSupport.h"

#include <cmath>
#include <cstring>

namespace {

using namespace sysinfo;
using quarn::testing::asMap;
using quarn::testing::Readings;

/// A controller whose keys and values a test sets.
class FakeController final : public SMCConnection {
public:
    struct Key {
        std::string name;
        std::string type;
        std::vector<uint8_t> bytes;
    };
    struct State {
        std::vector<Key> keys;
        std::map<int, int> calls; ///< by command
        int refusedIndex = -1;
        bool isDead = false;
    };

    explicit FakeController(std::shared_ptr<State> state) : state_(std::move(state)) {}

    bool call(const SMCParameters& in, SMCParameters& out) override {
        ++state_->calls[in.command];
        if (state_->isDead) return false;
        if (in.command == smcReadIndex) {
            const auto index = static_cast<int>(in.data32);
            if (index == state_->refusedIndex) out.result = 1;
            if (index < static_cast<int>(state_->keys.size()))
                out.key = smcCode(state_->keys[in.data32].name);
            return true;
        }
        const auto key = find(in.key);
        if (!key) {
            out.result = smcKeyNotFound;
        } else if (in.command == smcReadKeyInfo) {
            out.dataSize = static_cast<uint32_t>(key->bytes.size());
            out.dataType = smcCode(key->type);
        } else {
            EXPECT_EQ(in.dataSize, key->bytes.size()) << "a read asks for the size of the key";
            std::copy(key->bytes.begin(), key->bytes.begin() + std::min<long>(32, ssize(key->bytes)),
                      out.bytes);
        }
        return true;
    }

private:
    std::optional<Key> find(uint32_t code) const {
        if (code == smcKeyCount) {
            const auto n = static_cast<uint8_t>(state_->keys.size());
            return Key{"#KEY", "ui32", {0, 0, 0, n}};
        }
        for (const Key& key : state_->keys) {
            if (smcCode(key.name) == code) return key;
        }
        return {};
    }
    std::shared_ptr<State> state_;
};

std::vector<uint8_t> asFloat(float value) {
    std::vector<uint8_t> bytes(4);
    std::memcpy(bytes.data(), &value, 4);
    return bytes;
}

struct SMCRules : ::testing::Test {
    std::shared_ptr<FakeController::State> state = std::make_shared<FakeController::State>();
    SMC smc{std::make_unique<FakeController>(state)};
    SMCSensors sensors{smc};

    void set(const std::string& name, float value) {
        for (auto& key : state->keys) {
            if (key.name == name) {
                key.bytes = asFloat(value);
                return;
            }
        }
        state->keys.push_back({name, "flt ", asFloat(value)});
    }
    Readings temperatures(int max = 64) {
        SCSensor out[64];
        return asMap(out, sensors.temps(out, max));
    }
    Readings of(char kind) {
        SCSensor out[64];
        return asMap(out, sensors.keys(kind, out, 64));
    }
};

TEST_F(SMCRules, InformationOfAKeyIsAskedForOnce) {
    set("TC0P", 50);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(smc.read(smcCode("TC0P")).value, 50);
    EXPECT_EQ(state->calls[smcReadKeyInfo], 1);
    EXPECT_EQ(state->calls[smcReadBytes], 3);
}

TEST_F(SMCRules, KeysAreEnumeratedOnceAndAppended) {
    set("TC0P", 50);
    set("TB0T", 30);
    set("TW0P", 40);
    state->refusedIndex = 1;
    EXPECT_EQ(smc.keys(), (std::vector{smcCode("TC0P"), smcCode("TW0P")}))
        << "an index that fails is passed over";
    state->refusedIndex = -1;
    EXPECT_EQ(smc.keys().size(), 2u);
    EXPECT_EQ(state->calls[smcReadIndex], 3) << "known indices are not asked for again";
    set("TA0P", 25);
    EXPECT_EQ(smc.keys(2), std::vector{smcCode("TA0P")});
}

TEST_F(SMCRules, ATemperatureIsJudgedWhenItIsFirstSeen) {
    set("TC0P", 5);
    set("TC1P", 125);
    set("TDed", 3);   // a placeholder
    set("THot", 126); // another
    set("TCSP", 60);  // a set point
    state->keys.push_back({"TSpx", "sp78", {0x2a, 0x80}});
    state->keys.push_back({"TUi8", "ui8 ", {40}});
    EXPECT_EQ(temperatures(), (Readings{{"TC0P", 5}, {"TC1P", 125}, {"TSpx", 42.5}}));

    set("TDed", 50);
    set("THot", 50);
    set("TC0P", 131);
    set("TC1P", -0.5F);
    state->calls.clear();
    EXPECT_EQ(temperatures(), (Readings{{"TSpx", 42.5}})) << "dropped for good, or implausible now";
    EXPECT_EQ(state->calls[smcReadBytes], 4) << "the number of keys and the three kept ones";
    set("TC0P", 130);
    set("TC1P", 0);
    set("TNew", 33);
    EXPECT_EQ(temperatures(), (Readings{{"TC0P", 130}, {"TC1P", 0}, {"TNew", 33}, {"TSpx", 42.5}}));
    EXPECT_EQ(temperatures(2).size(), 2u);
}

TEST_F(SMCRules, LimitsByKind) {
    set("F0Ac", 1200);
    set("F1Ac", 15000);
    set("F2Ac", 20000);
    set("F3Ac", -1);
    set("F4Ac", 0);
    set("F0Mx", 6000); // a bound, not a speed
    set("PC0R", -2.5F);
    set("PC1R", std::nanf(""));
    set("VC0C", 1.25F);
    set("IC0R", 0);
    set("Xabc", 7);
    EXPECT_EQ(of('F'), (Readings{{"F0Ac", 1200}, {"F1Ac", 15000}, {"F4Ac", 0}}));
    EXPECT_EQ(of('P'), (Readings{{"PC0R", -2.5}})) << "power may flow either way";
    EXPECT_EQ(of('V'), (Readings{{"VC0C", 1.25}}));
    EXPECT_EQ(of('I'), (Readings{{"IC0R", 0}}));
    EXPECT_EQ(of('X'), (Readings{{"Xabc", 7}})) << "any other kind is looked for each time";
}

TEST_F(SMCRules, ACacheIsBuiltWithoutARoomForResults) {
    set("PC0R", 1);
    EXPECT_EQ(sensors.keys('P', nullptr, 8), 0);
    state->keys.front().type = "ui8 "; // would no longer pass
    state->calls.clear();
    SCSensor out[1];
    EXPECT_EQ(sensors.keys('P', out, 0), 0);
    EXPECT_EQ(state->calls[smcReadKeyInfo], 0) << "nothing was judged anew";
}

TEST_F(SMCRules, OneValue) {
    set("PSTR", 12.5F);
    EXPECT_EQ(sensors.value("PSTR"), 12.5);
    state->calls.clear();
    for (const char* wrong : {"PST", "PSTRx", ""}) EXPECT_TRUE(std::isnan(sensors.value(wrong)));
    EXPECT_TRUE(std::isnan(sensors.value(nullptr)));
    EXPECT_TRUE(state->calls.empty()) << "a key of another length never reaches the controller";
    EXPECT_TRUE(std::isnan(sensors.value("none")));
    state->keys.push_back({"long", "ui8 ", std::vector<uint8_t>(33)});
    EXPECT_TRUE(std::isnan(sensors.value("long")));
}

TEST_F(SMCRules, WithoutAControllerThereIsNothing) {
    SMC none{std::unique_ptr<SMCConnection>()};
    SMCSensors nothing(none);
    SCSensor out[4];
    EXPECT_EQ(nothing.temps(out, 4), 0);
    EXPECT_EQ(nothing.keys('F', out, 4), 0);
    EXPECT_TRUE(none.keys().empty());
    EXPECT_TRUE(std::isnan(nothing.value("PSTR")));

    set("TC0P", 50);
    state->isDead = true;
    EXPECT_TRUE(temperatures().empty());
    state->isDead = false;
    EXPECT_EQ(temperatures().size(), 1u) << "a controller that answers later is enumerated then";
    EXPECT_EQ(sensors.temps(nullptr, 4), 0);
}

} // namespace
