#include "core/linux/SensorAppleKeys.h"

#include "core/Scan.h"
#include "core/linux/Files.h"

namespace sysinfo::platform {

namespace {

constexpr long long mostKeys = 4096;

/// The driver's files: a cursor over the keys.
class KeyFiles {
public:
    explicit KeyFiles(std::string folder)
        : cursor_(folder + "/key_at_index"),
          name_{folder + "/key_at_index_name", {}},
          type_{folder + "/key_at_index_type", {}},
          length_{folder + "/key_at_index_data_length", {}},
          data_{folder + "/key_at_index_data", {}} {}

    bool choose(const SensorIo& io, int index) { return io.write(cursor_, std::to_string(index)); }

    // Names and types may end with a blank, which belongs to them.
    uint32_t name(const SensorIo& io) { return code(io, name_); }
    uint32_t type(const SensorIo& io) { return code(io, type_); }
    long long length(const SensorIo& io) { return readInteger(io, length_).value_or(0); }
    long data(const SensorIo& io, std::span<char> out) { return io.read(data_, out); }

private:
    static uint32_t code(const SensorIo& io, KeptAttribute& attribute) {
        std::array<char, 16> text;
        return io.read(attribute, text) >= 4 ? smcCode({text.data(), 4}) : 0;
    }

    std::string cursor_;
    KeptAttribute name_;
    KeptAttribute type_;
    KeptAttribute length_;
    KeptAttribute data_;
};

class AppleKeys final : public SensorChip {
public:
    AppleKeys(ChipIdentity chip, std::vector<SensorChannel> list, KeyFiles files)
        : SensorChip(std::move(chip), std::move(list), SensorGuard()), files_(std::move(files)) {}

    // Each key is an exchange of its own with the controller.
    uint64_t deadlineNs(const SensorIo& io, size_t wanted) const override { return io.deadlineNs * wanted; }

private:
    void read(const SensorIo& io, std::span<const size_t> wanted) override {
        for (const size_t i : wanted) {
            if (mayTry(i, io.nowNs())) readKey(io, i);
        }
    }

    void readKey(const SensorIo& io, size_t i) {
        const SensorChannel& channel = channels[i];
        std::array<char, 32> data{};
        const bool read = files_.choose(io, channel.number) &&
                          files_.data(io, data) == static_cast<long>(channel.size) &&
                          files_.name(io) == channel.namedKey;
        if (!read) return reportFailure(io, i);
        std::array<uint8_t, 32> bytes;
        std::copy(data.begin(), data.end(), bytes.begin());
        reportBytes(io, i, {bytes.data(), channel.size});
    }

    KeyFiles files_;
};

} // namespace

std::shared_ptr<SensorChip> openAppleKeys(const SystemRoot& root, const SensorIo& io) {
    const std::string folder = root.path("sys/devices/platform/applesmc.768");
    if (!io.write || !exists(folder + "/key_at_index")) return nullptr;
    KeptAttribute countFile{folder + "/key_count", {}};
    const long long count = readInteger(io, countFile).value_or(0);
    KeyFiles files(folder);
    std::vector<SensorChannel> channels;
    for (int index = 0; index < count && index < mostKeys; ++index) {
        if (!files.choose(io, index)) break;
        SensorChannel channel;
        channel.number = index;
        channel.namedKey = files.name(io);
        channel.type = files.type(io);
        const long long length = files.length(io);
        if (channel.namedKey == 0 || length < 1 || length > 32) continue;
        channel.size = static_cast<uint32_t>(length);
        channel.isListedAtOnce = true;
        channels.push_back(channel);
    }
    if (channels.empty()) return nullptr;
    ChipIdentity chip{"applesmc", "applesmc", "SMC", "applesmc.768", SensorClass::board};
    return std::make_shared<AppleKeys>(std::move(chip), std::move(channels), std::move(files));
}

} // namespace sysinfo::platform
