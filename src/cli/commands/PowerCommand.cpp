#include "cli/Command.h"
#include "cli/FactList.h"
#include "cli/Fields.h"
#include "cli/Json.h"
#include "cli/Output.h"
#include "core/IOReport.h"
#include "core/platform.h"
#include "ui/modules/Format.h"

#include <thread>

namespace quarn::cli {
namespace {

using sysinfo::EnergyAccess;

/// One measurement of the machine's power.
struct PowerReport {
    SCPower power{};
    EnergyAccess access = EnergyAccess::none;
    bool captured = false;
};

std::string_view reasonText(const PowerReport& report) {
    switch (report.access) {
    case EnergyAccess::denied:
        return "Energy counters are readable by root only; run as root to see power by domain.";
    case EnergyAccess::none: return "This machine has no energy counters that are known here.";
    case EnergyAccess::open: break;
    }
    return report.captured ? "The energy counters of a captured machine do not move." : "";
}

/// The total is this machine's: a captured one has no sensors that could be asked.
double totalWatts(const sysinfo::SystemRoot& root) { return root.isHost() ? sc_smc_read_float("PSTR") : 0; }

PowerReport measure(const Options& options) {
    sysinfo::IOReport report(sysinfo::platform::openEnergySource(options.root),
                             sysinfo::platform::monotonicRawNs, [&] { return totalWatts(options.root); });
    totalWatts(options.root); // may need two readings as well
    std::this_thread::sleep_for(std::chrono::duration<double>(options.interval));
    PowerReport result{report.sample(), sysinfo::platform::energyAccess(options.root),
                       !options.root.isHost()};
    if (!report.ready())
        if (const double total = totalWatts(options.root); total > 0) result.power.sysWatts = total;
    return result;
}

std::string describe(const PowerReport& report, Charset charset) {
    const SCPower& power = report.power;
    const auto watts = [](double value) { return value > 0 ? format::watts(value) : std::string(); };
    FactList facts(charset);
    facts.heading("Power");
    facts.add("Whole machine", watts(power.sysWatts));
    facts.add("Processors", watts(power.cpuWatts));
    facts.add("GPU", watts(power.gpuWatts));
    facts.add("Memory", watts(power.dramWatts));
    if (power.aneWatts > 0) facts.add("Neural engine", watts(power.aneWatts));
    std::string text = facts.text();
    if (const auto reason = reasonText(report); !reason.empty()) text += "\n" + std::string(reason) + "\n";
    return text;
}

} // namespace

template <>
struct Fields<PowerReport> {
    template <class Visit>
    static void each(const PowerReport& report, const Known&, Visit&& visit) {
        visit("power", report.power);
        visit("reason", unlessEmpty(reasonText(report)));
    }
};

int runPower(const Options& options) {
    const PowerReport report = measure(options);
    if (options.form == Options::Form::json) {
        JsonWriter json;
        writeJson(json, report, {});
        json.newline();
        writeOut(json.text());
    } else {
        writeOut(describe(report, charsetOfEnvironment()));
    }
    return 0;
}

} // namespace quarn::cli
