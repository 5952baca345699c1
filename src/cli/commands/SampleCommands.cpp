// Commands that print one sample, or one after the other.
#include "cli/Command.h"
#include "cli/Engine.h"
#include "cli/Json.h"
#include "cli/Output.h"
#include "cli/PlainSnapshot.h"

#include <thread>

namespace quarn::cli {
namespace {

template <class T>
void writeDocument(JsonWriter& json, const T& value, const Known& known) {
    json.clear();
    writeJson(json, value, known);
    json.newline();
    writeOut(json.text());
}

} // namespace

int runSnapshot(const Options& options) {
    Engine engine(options.root);
    engine.wantSensors();
    const Snapshot& snapshot = engine.sampleOver(options.interval);
    if (options.form == Options::Form::json) {
        JsonWriter json;
        writeDocument(json, snapshot, engine.known());
    } else {
        writeOut(plainSnapshot(snapshot, engine.known(), machineName(options.root), charsetOfEnvironment()));
    }
    return 0;
}

int runStream(const Options& options) {
    using Clock = std::chrono::steady_clock;
    constexpr double shortest = 0.01; // a machine measured without a pause measures its measuring
    const double seconds = std::max(options.interval, shortest);
    const auto interval = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    Engine engine(options.root);
    engine.monitor().setTick(seconds);
    engine.wantSensors();
    JsonWriter json;
    engine.sample(); // the first only primes the rates
    auto next = Clock::now();
    for (uint64_t written = 0; options.count == 0 || written < options.count; ++written) {
        // What a slow reader made late is left out, not hurried after.
        next = std::max(next + interval, Clock::now());
        std::this_thread::sleep_until(next);
        const Snapshot& snapshot = engine.sample();
        if (options.form == Options::Form::json) {
            writeDocument(json, snapshot, engine.known());
        } else {
            writeOut(
                plainSnapshot(snapshot, engine.known(), machineName(options.root), charsetOfEnvironment()) +
                "\n");
        }
    }
    return 0;
}

int runProcesses(const Options& options) {
    Engine engine(options.root);
    const Snapshot& snapshot = engine.sampleOver(options.interval);
    const Known known = engine.known();
    if (options.form == Options::Form::text) {
        writeOut(plainProcesses(snapshot, known, options.order, options.limit, charsetOfEnvironment()));
        return 0;
    }
    JsonWriter json;
    writeDocument(json, ordered(snapshot.processes, options.order, options.limit, known), known);
    return 0;
}

} // namespace quarn::cli
