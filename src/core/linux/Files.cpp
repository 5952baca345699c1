#include "core/linux/Files.h"

#include "core/Scan.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>

namespace sysinfo::platform {

namespace {

template <class Call>
auto retried(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) result = call();
    return result;
}

constexpr int readFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

} // namespace

scutil::UniqueFd openForReading(const char* path) { return openForReadingAt(AT_FDCWD, path); }

scutil::UniqueFd openForReadingAt(int directory, const char* relative) {
    return scutil::UniqueFd(retried([&] { return ::openat(directory, relative, readFlags); }));
}

std::optional<std::string_view> KeptTable::read() {
    if (!fd_) fd_ = openForReading(path_.c_str());
    if (!fd_) return {};
    if (buffer_.empty()) buffer_.resize(4096);
    size_t length = 0;
    for (;;) {
        const auto got = retried([&] {
            return ::pread(fd_.get(), buffer_.data() + length, buffer_.size() - length,
                           static_cast<off_t>(length));
        });
        if (got < 0) {
            fd_.reset();
            return {};
        }
        if (got == 0) break;
        length += static_cast<size_t>(got);
        // Only an empty read is the end: many tables come in pieces of a page.
        if (length < buffer_.size()) continue;
        buffer_.resize(buffer_.size() * 2);
    }
    return std::string_view(buffer_.data(), length);
}

long readOnce(int fd, std::vector<char>& buffer) {
    return retried([&] { return ::pread(fd, buffer.data(), buffer.size(), 0); });
}

bool readAll(int fd, std::string& out) {
    std::array<char, 8192> chunk;
    for (;;) {
        const auto got = retried([&] { return ::read(fd, chunk.data(), chunk.size()); });
        if (got < 0) return false;
        if (got == 0) return true;
        out.append(chunk.data(), static_cast<size_t>(got));
    }
}

std::optional<std::string> readTable(const std::string& path) {
    const auto fd = openForReading(path.c_str());
    std::string content;
    if (!fd || !readAll(fd.get(), content)) return {};
    return content;
}

std::optional<std::string> readAttribute(const std::string& path) {
    const auto fd = openForReading(path.c_str());
    if (!fd) return {};
    std::array<char, 4096> buffer;
    const auto got = retried([&] { return ::read(fd.get(), buffer.data(), buffer.size()); });
    if (got < 0) return {};
    return std::string(scutil::trimmed({buffer.data(), static_cast<size_t>(got)}));
}

std::optional<long long> readNumber(const std::string& path) {
    const auto text = readAttribute(path);
    if (!text) return {};
    if (text->starts_with("0x")) return scutil::toNumber<long long>(std::string_view(*text).substr(2), 16);
    return scutil::toNumber<long long>(*text);
}

std::optional<std::string> readLink(const std::string& path) {
    std::array<char, 4096> buffer;
    const auto length = ::readlink(path.c_str(), buffer.data(), buffer.size());
    if (length < 0) return {};
    return std::string(buffer.data(), static_cast<size_t>(length));
}

std::vector<std::string> listFolder(const std::string& path) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(path.c_str()), ::closedir);
    if (!folder) return names;
    while (const dirent* entry = ::readdir(folder.get())) {
        const std::string_view name(entry->d_name);
        if (name != "." && name != "..") names.emplace_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool exists(const std::string& path) { return ::access(path.c_str(), F_OK) == 0; }

} // namespace sysinfo::platform
