#include "core/linux/Files.h"
#include "core/linux/MountTable.h"
#include "core/linux/VolumeAnswers.h"
#include "core/platform.h"

#include <sys/statvfs.h>

namespace sysinfo::platform {

namespace {

std::optional<VolumeSpace> askFileSystem(const std::string& mountPoint) {
    struct statvfs status {};
    if (::statvfs(mountPoint.c_str(), &status) != 0) return {};
    return VolumeSpace{static_cast<uint64_t>(status.f_blocks) * status.f_frsize,
                       static_cast<uint64_t>(status.f_bavail) * status.f_frsize};
}

/// One for the program: a server that hangs must not hang once for each listing.
VolumeAnswers& remoteAnswers() {
    static VolumeAnswers answers(askFileSystem, std::chrono::milliseconds(50));
    return answers;
}

VolumeAnswers::Question questionFor(const Mount& mount) {
    return {std::to_string(mount.id) + ' ' + mount.device + ' ' + mount.point, mount.point};
}

std::vector<VolumeAnswers::Answer> askAll(const std::vector<Mount>& mounts, const std::vector<Mount>& table) {
    std::vector<VolumeAnswers::Answer> all(mounts.size());
    std::vector<VolumeAnswers::Question> questions;
    std::vector<size_t> askers;
    for (size_t i = 0; i < mounts.size(); ++i) {
        using State = VolumeAnswers::Answer::State;
        if (canStall(mounts[i], table)) {
            questions.push_back(questionFor(mounts[i]));
            askers.push_back(i);
        } else if (const auto space = askFileSystem(mounts[i].point)) {
            all[i] = {State::known, *space};
        } else {
            all[i].state = State::refused;
        }
    }
    if (questions.empty()) return all;
    const auto answers = remoteAnswers().answers(questions);
    for (size_t i = 0; i < askers.size(); ++i) all[askers[i]] = answers[i];
    return all;
}

MountedVolume volumeOf(const Mount& mount) {
    MountedVolume volume;
    volume.mount = mount.point;
    volume.device = mount.source;
    volume.fs = mount.type;
    volume.local = !isRemote(mount);
    return volume;
}

} // namespace

std::vector<MountedVolume> readMountedVolumes(const SystemRoot& root) {
    const auto text = readTable(root.path("proc/self/mountinfo"));
    if (!text) return {};
    const auto table = parseMountInfo(*text);
    const auto mounts = browsableMounts(table);

    std::vector<VolumeAnswers::Answer> answers(mounts.size());
    if (root.isHost()) answers = askAll(mounts, table);

    std::vector<MountedVolume> volumes;
    for (size_t i = 0; i < mounts.size(); ++i) {
        const auto& [state, space] = answers[i];
        const bool empty = state == VolumeAnswers::Answer::State::known && space.total == 0;
        if (empty || state == VolumeAnswers::Answer::State::refused) continue;
        MountedVolume volume = volumeOf(mounts[i]);
        volume.total = space.total;
        volume.available = space.available;
        volumes.push_back(std::move(volume));
    }
    return volumes;
}

} // namespace sysinfo::platform
