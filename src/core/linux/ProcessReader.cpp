#include "core/linux/ProcessReader.h"

#include "core/linux/ProcessFiles.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace sysinfo::platform {

namespace {

KernelProcess::RunState runState(char letter) {
    using enum KernelProcess::RunState;
    switch (letter) {
    case 'R': return running;
    case 'T':
    case 't': return stopped;
    case 'Z':
    case 'X':
    case 'x': return zombie;
    default: return sleeping; // S, D, I and the letters of older kernels
    }
}

bool isGone(int error) { return error == ENOENT || error == ESRCH; }

} // namespace

ProcessReader::ProcessReader(const SystemRoot& root, uint64_t bootSeconds)
    : procPrefix_(root.path("proc/")), bootSeconds_(bootSeconds), buffer_(4096) {}

std::optional<std::string_view> ProcessReader::readFile(int folder, const char* name) {
    const auto fd = openForReadingAt(folder, name);
    if (!fd) return {};
    const long length = readOnce(fd.get(), buffer_);
    if (length < 0) return {};
    return std::string_view(buffer_.data(), static_cast<size_t>(length));
}

Text ProcessReader::readPath(int folder) const {
    std::array<char, 4096> target;
    const auto length = ::readlinkat(folder, "exe", target.data(), target.size());
    if (length <= 0) return {};
    std::string_view path(target.data(), static_cast<size_t>(length));
    constexpr std::string_view deleted = " (deleted)";
    if (path.ends_with(deleted)) path.remove_suffix(deleted.size());
    return path;
}

ProcessReader::Outcome ProcessReader::read(KernelProcess& process) {
    std::array<char, 512> path;
    char* end = path.data();
    if (procPrefix_.size() + 16 > path.size()) return Outcome::gone;
    end = std::copy(procPrefix_.begin(), procPrefix_.end(), end);
    end = std::to_chars(end, path.data() + path.size() - 1, process.pid).ptr;
    *end = '\0';
    const scutil::UniqueFd folder(::open(path.data(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!folder) return isGone(errno) ? Outcome::gone : Outcome::denied;

    errno = 0;
    const auto statText = readFile(folder.get(), "stat");
    if (!statText) {
        if (isGone(errno)) return Outcome::gone;
        struct stat owner {};
        if (::fstat(folder.get(), &owner) == 0) process.uid = owner.st_uid;
        return Outcome::denied;
    }
    const auto stat = parseProcessStat(*statText);
    if (!stat) return Outcome::gone; // an empty file: the process ended between open and read

    const uint64_t start = startMicros(bootSeconds_, stat->startTicks);
    const bool sameProcess = process.startTimeMicros == start && process.measured;
    const bool sameProgram = sameProcess && process.shortName == stat->comm;
    process.startTimeMicros = start;
    if (!sameProgram) {
        process.shortName = stat->comm;
        // A zombie has no path any more; keep the one it had.
        if (Text executable = readPath(folder.get()); !executable.empty() || !sameProcess)
            process.path = std::move(executable);
    }
    process.ppid = stat->ppid;
    process.state = runState(stat->state);
    process.threads = stat->threads;
    process.cpuTimeNs = stat->cpuTicks * (1'000'000'000 / static_cast<uint64_t>(::sysconf(_SC_CLK_TCK)));
    process.measured = true;

    if (!sameProcess) process.memBytes = process.contextSwitches = 0;
    const uint32_t formerUid = process.uid;
    if (const auto text = readFile(folder.get(), "status")) {
        const ProcessStatus status = parseProcessStatus(*text);
        if (status.uidKnown) process.uid = status.effectiveUid;
        process.memBytes = status.anonymous ? *status.anonymous + status.swapped : status.resident;
        process.contextSwitches = status.contextSwitches;
    }

    // What was denied stays denied until the process is another one or changes its user.
    const bool wasDenied = sameProcess && !process.ioKnown && process.uid == formerUid;
    if (wasDenied && !isRoot()) return Outcome::read;
    const auto ioText = readFile(folder.get(), "io");
    const auto io = ioText ? parseProcessIo(*ioText) : std::nullopt;
    if (io) {
        process.diskRead = io->readBytes;
        process.diskWrite = io->writeBytes;
    } else if (!sameProcess) {
        process.diskRead = process.diskWrite = 0;
    }
    process.ioKnown =
        io || (sameProcess && process.ioKnown && process.state == KernelProcess::RunState::zombie);
    return Outcome::read;
}

} // namespace sysinfo::platform
