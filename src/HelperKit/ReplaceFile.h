#pragma once

#include <filesystem>
#include <string_view>

namespace quarn {

/// Who may read a file that did not exist before; one that is replaced keeps its owner and permissions.
enum class NewFile {
    forUserAlone,
    asUsual, ///< whoever the umask lets
};

/// Puts `content` in the place of a file: whole or not at all, and on disk before this returns. A symbolic
/// link stays, what it points at is replaced. Something that is no regular file, such as a pipe or a device,
/// is written to as it is. Throws std::system_error, whose text begins with the path; a former file is then
/// untouched.
void replaceFile(const std::filesystem::path& file, std::string_view content, NewFile readers);

/// Whether something is there that is no regular file, so that it cannot be replaced.
bool isSpecialFile(const std::filesystem::path& file);

/// Writes all of `text`, however many calls it takes. False, with errno set, when that failed.
bool writeAll(int fd, std::string_view text);

} // namespace quarn
