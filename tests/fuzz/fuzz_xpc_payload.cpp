#include "Fuzz.h"
#include "HelperKit/XPCPayload.h"

using namespace quarn;

namespace {

/// What decodes must decode to the same from its own encoding.
template <class Record>
void check(DataView data) {
    const auto record = XPCPayload::decode<Record>(data);
    require(!record || XPCPayload::decode<Record>(XPCPayload::encode(*record)) == record);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const DataView bytes(data, size);
    check<HelperProcess>(bytes);
    check<HelperProcessList>(bytes);
    check<SocketRecord>(bytes);
    check<std::vector<SocketRecord>>(bytes);
    check<HelperPower>(bytes);
    check<VersionInfo>(bytes);
    check<CommandResult>(bytes);
    return 0;
}
