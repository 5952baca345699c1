#include "core/SMCSensors.h"

#include <limits>

using sysinfo::SMC;
using sysinfo::SMCSensors;

namespace {

SMCSensors& sensors() {
    static SMCSensors shared(SMC::get());
    return shared;
}

// The interface is total: even memory exhaustion ends as "nothing".
template <class Call, class Failed>
auto guarded(Call call, Failed failed) noexcept -> decltype(call()) {
    try {
        return call();
    } catch (...) {
        return failed;
    }
}

} // namespace

uint64_t sc_smc_key_capacity(void) {
    return guarded([] { return static_cast<uint64_t>(SMC::get().keys().size()); }, uint64_t{0});
}

double sc_smc_read_float(const char* key) {
    return guarded([key] { return sensors().value(key); }, std::numeric_limits<double>::quiet_NaN());
}

int sc_smc_read_temps(SCSensor* out, int max) {
    return guarded([=] { return sensors().temps(out, max); }, 0);
}

int sc_smc_read_keys(char kind, SCSensor* out, int max) {
    return guarded([=] { return sensors().keys(kind, out, max); }, 0);
}
