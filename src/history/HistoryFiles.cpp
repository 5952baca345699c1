#include "history/HistoryFiles.h"

#include "core/UniqueFd.h"

#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quarn {

namespace fs = std::filesystem;

namespace {

fs::path homeFolder() {
    const char* home = std::getenv("HOME");
    if (home && *home) return home;
    const passwd* user = ::getpwuid(::getuid());
    return user ? user->pw_dir : "";
}

fs::path dataFolder() {
    const char* configured = std::getenv("XDG_DATA_HOME");
    if (configured && fs::path(configured).is_absolute()) return configured;
    const fs::path home = homeFolder();
    return home.is_absolute() ? home / ".local" / "share" : fs::path();
}

fs::path fileNamed(const char* name) {
    const fs::path folder = dataFolder();
    return folder.empty() ? folder : folder / "Quarn" / name;
}

} // namespace

fs::path metricsFile() { return fileNamed("metrics.sqlite"); }
fs::path liveHistoryFile() { return fileNamed("live-history.plist"); }

void makePrivateFolder(const fs::path& folder) {
    std::error_code error;
    if (folder.empty() || fs::is_directory(folder, error)) return;
    makePrivateFolder(folder.parent_path());
    ::mkdir(folder.c_str(), 0700);
}

void makePrivateFile(const fs::path& file) {
    makePrivateFolder(file.parent_path());
    // Only a new one is opened: closing it would take away the locks that this program has on an old one.
    const scutil::UniqueFd created(::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
}

fs::path setAside(const fs::path& file, std::string_view error) {
    fs::path aside;
    for (int number = 1; aside.empty() || fs::exists(aside); ++number)
        aside = file.string() + ".broken-" + std::to_string(number);
    fs::rename(file, aside);
    for (const char* companion : {"-wal", "-shm"}) {
        std::error_code missing;
        fs::rename(file.string() + companion, aside.string() + companion, missing);
    }
    std::ofstream(aside.string() + ".txt") << error << '\n';
    return aside;
}

} // namespace quarn
