#include "Fuzz.h"
#include "HelperKit/ProcessWire.h"

using namespace quarn;

namespace {

/// Whatever was decoded must survive another round, with and without the paths.
void checkRoundTrips(const HelperProcessList& list) {
    ProcessWire::Paths sent, known;
    for (int round = 0; round < 2; ++round) {
        const auto again = ProcessWire::decode(ProcessWire::encode(list, sent), known);
        require(again && again->processes.size() == list.processes.size());
        require(again->totalThreads == list.totalThreads && sent == known);
        for (size_t i = 0; i < list.processes.size(); ++i)
            require(again->processes[i].path == list.processes[i].path);
    }
}

void checkAnyName(DataView bytes) {
    HelperProcessList list{std::vector<HelperProcess>(1), 0};
    list.processes[0].path.assign(bytes.begin(), bytes.end());
    ProcessWire::Paths sent, known;
    require(ProcessWire::decode(ProcessWire::encode(list, sent), known).has_value());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const ProcessWire::Paths before{{{1, 1}, "/one"}, {{2, 2}, "/two"}};
    auto known = before;
    const auto list = ProcessWire::decode({data, size}, known);
    if (list)
        checkRoundTrips(*list);
    else
        require(known == before);
    checkAnyName({data, size});
    return 0;
}
