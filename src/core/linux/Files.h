#pragma once

#include "core/SystemRoot.h"
#include "core/UniqueFd.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// How every file of proc and sys is read. Two kinds exist: an attribute is one short value, asked with one
/// read (some drivers answer EAGAIN or EIO for ever); a table is read to its end.
namespace sysinfo::platform {

/// A table that is read again and again through one kept descriptor and one buffer.
class KeptTable {
public:
    KeptTable(const SystemRoot& root, std::string_view relative) : path_(root.path(relative)) {}

    /// The whole content, valid until the next call; nullopt when it cannot be read now. A file that was
    /// missing is looked for again with each call.
    std::optional<std::string_view> read();

private:
    std::string path_;
    scutil::UniqueFd fd_;
    std::vector<char> buffer_;
};

/// Opens for reading, close-on-exec, never waiting for a device; invalid on failure (errno says why).
scutil::UniqueFd openForReading(const char* path);
scutil::UniqueFd openForReadingAt(int directory, const char* relative);

/// One read of at most `buffer` bytes from the start; the bytes read, −1 on failure.
long readOnce(int fd, std::vector<char>& buffer);

/// Appends everything up to the end of the file; false when a read failed.
bool readAll(int fd, std::string& out);

/// The content of a small table; nullopt when missing or unreadable.
std::optional<std::string> readTable(const std::string& path);

/// One attribute without its trailing line feeds, blanks and NULs; nullopt when missing or unreadable. An
/// attribute of up to 4 KiB is read whole.
std::optional<std::string> readAttribute(const std::string& path);

/// An attribute that is one decimal (or 0x hexadecimal) integer; nullopt also for any other content.
std::optional<long long> readNumber(const std::string& path);

/// The target of a symbolic link; nullopt when there is none.
std::optional<std::string> readLink(const std::string& path);

/// The names in a folder in ascending byte order, without "." and ".."; empty when it cannot be read.
std::vector<std::string> listFolder(const std::string& path);

bool exists(const std::string& path);

} // namespace sysinfo::platform
