#include "HelperKit/ProcessWire.h"

#include "HelperKit/ByteReader.h"
#include "HelperKit/ByteWriter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>

namespace quarn::ProcessWire {

namespace {

constexpr std::array<uint8_t, 3> magic{'Q', 'R', 'P'};

constexpr size_t smallestRecord(Revision revision) { return revision == Revision::current ? 103 : 94; }

/// `value`, or the nearest value that the narrower type has.
template <class Narrow>
Narrow saturated(int64_t value) {
    const auto least = static_cast<int64_t>(std::numeric_limits<Narrow>::min());
    const auto most = static_cast<uint64_t>(std::numeric_limits<Narrow>::max());
    if (value < least) return std::numeric_limits<Narrow>::min();
    return value > 0 && static_cast<uint64_t>(value) > most ? std::numeric_limits<Narrow>::max()
                                                            : static_cast<Narrow>(value);
}

std::optional<ProcessKey> keyOf(const HelperProcess& process) {
    if (process.startTimeMicros.value_or(0) == 0) return std::nullopt;
    return ProcessKey{saturated<int32_t>(process.pid), *process.startTimeMicros};
}

/// Whether the other end lacks the path; from now on it has it.
bool mustSendPath(const HelperProcess& process, Paths& sent) {
    const auto key = keyOf(process);
    if (!key) return true;
    const auto [known, isNew] = sent.try_emplace(*key, process.path);
    if (isNew) return true;
    if (known->second == process.path) return false;
    known->second = process.path;
    return true;
}

void write(ByteWriter& out, const HelperProcess& process, Paths& sent, Revision revision) {
    const bool withPath = mustSendPath(process, sent);
    const bool withEnergy = revision == Revision::current;
    out.integer(saturated<int32_t>(process.pid));
    out.integer(saturated<uint32_t>(process.ppid));
    out.integer(saturated<uint32_t>(process.uid));
    out.integer(saturated<uint32_t>(process.threads));
    out.integer<uint8_t>(process.accessible);
    out.integer<uint8_t>(withPath);
    if (withEnergy) out.integer<uint8_t>(process.energyNj.has_value());
    out.integer(std::bit_cast<uint64_t>(process.cpuPercent));
    out.integer(process.memBytes);
    out.integer(process.cpuTimeNs);
    out.integer(process.startTime);
    out.integer(process.startTimeMicros.value_or(0));
    out.integer(process.diskRead);
    out.integer(process.diskWrite);
    out.integer(process.contextSwitches);
    if (withEnergy) out.integer(process.energyNj.value_or(0));
    out.string(process.name);
    out.string(process.user);
    out.string(process.state);
    if (withPath) out.string(process.path);
}

/// Reads field after field; `failed` tells in the end whether one was missing or impossible.
class FieldReader {
public:
    explicit FieldReader(ByteReader& in) : in_(in) {}

    template <class Integer>
    Integer integer() {
        return checked(in_.integer<Integer>());
    }
    bool flag() {
        const auto value = integer<uint8_t>();
        failed |= value > 1;
        return value == 1;
    }
    double real() { return std::bit_cast<double>(integer<uint64_t>()); }
    std::string_view string() { return checked(in_.string()); }

    bool failed = false;

private:
    template <class Value>
    Value checked(const std::optional<Value>& value) {
        failed |= !value;
        return value.value_or(Value{});
    }

    ByteReader& in_;
};

/// The paths known before the message and those that it brings, kept apart until the whole message is read.
class PathsInTransit {
public:
    explicit PathsInTransit(Paths& known) : known_(known) {}

    void add(const ProcessKey& key, std::string_view path) { arrived_.insert_or_assign(key, path); }

    const std::string* find(const ProcessKey& key) const {
        if (const auto it = arrived_.find(key); it != arrived_.end()) return &it->second;
        const auto it = known_.find(key);
        return it == known_.end() ? nullptr : &it->second;
    }

    void commit() {
        while (!arrived_.empty()) {
            auto result = known_.insert(arrived_.extract(arrived_.begin()));
            if (!result.inserted) result.position->second = std::move(result.node.mapped());
        }
    }

private:
    Paths& known_;
    Paths arrived_;
};

bool readPath(FieldReader& in, HelperProcess& process, bool follows, PathsInTransit& paths) {
    const auto key = keyOf(process);
    if (follows) {
        process.path = in.string();
        if (key) paths.add(*key, process.path);
        return true;
    }
    const std::string* path = key ? paths.find(*key) : nullptr;
    if (path) process.path = *path;
    return path != nullptr;
}

bool read(ByteReader& bytes, HelperProcess& process, PathsInTransit& paths, Revision revision) {
    const bool withEnergy = revision == Revision::current;
    FieldReader in(bytes);
    process.pid = in.integer<int32_t>();
    process.ppid = in.integer<uint32_t>();
    process.uid = in.integer<uint32_t>();
    process.threads = in.integer<uint32_t>();
    process.accessible = in.flag();
    const bool pathFollows = in.flag();
    const bool energyKnown = withEnergy && in.flag();
    process.cpuPercent = in.real();
    process.memBytes = in.integer<uint64_t>();
    process.cpuTimeNs = in.integer<uint64_t>();
    process.startTime = in.integer<uint64_t>();
    if (const auto micros = in.integer<uint64_t>()) process.startTimeMicros = micros;
    process.diskRead = in.integer<uint64_t>();
    process.diskWrite = in.integer<uint64_t>();
    process.contextSwitches = in.integer<uint64_t>();
    const auto energyNj = withEnergy ? in.integer<uint64_t>() : 0;
    if (energyKnown) process.energyNj = energyNj;
    process.name = in.string();
    process.user = in.string();
    process.state = in.string();
    return readPath(in, process, pathFollows, paths) && !in.failed;
}

std::optional<Revision> readStart(ByteReader& in) {
    const auto start = in.bytes(magic.size());
    if (!start || !std::equal(start->begin(), start->end(), magic.begin())) return std::nullopt;
    const auto revision = in.integer<uint8_t>();
    if (revision != 1 && revision != 2) return std::nullopt;
    return static_cast<Revision>(*revision);
}

} // namespace

Data encode(const HelperProcessList& list, Paths& sent, Revision revision) {
    ByteWriter out;
    out.reserve(104 * list.processes.size() + 64);
    out.bytes(magic);
    out.integer(static_cast<uint8_t>(revision));
    out.integer(saturated<uint64_t>(list.totalThreads));
    out.integer(static_cast<uint32_t>(list.processes.size()));
    for (const auto& process : list.processes) write(out, process, sent, revision);
    return out.take();
}

std::optional<HelperProcessList> decode(DataView data, Paths& known) {
    ByteReader in(data);
    const auto revision = readStart(in);
    if (!revision) return std::nullopt;
    const auto totalThreads = in.integer<uint64_t>();
    const auto count = in.integer<uint32_t>();
    // A corrupt count must not reserve memory for records that cannot be there.
    if (!totalThreads || !count || in.remaining() / smallestRecord(*revision) < *count) return std::nullopt;

    PathsInTransit paths(known);
    HelperProcessList list;
    list.totalThreads =
        static_cast<int64_t>(std::min<uint64_t>(*totalThreads, std::numeric_limits<int64_t>::max()));
    list.processes.resize(*count);
    for (auto& process : list.processes)
        if (!read(in, process, paths, *revision)) return std::nullopt;
    if (in.remaining() != 0) return std::nullopt;
    paths.commit();
    return list;
}

} // namespace quarn::ProcessWire
