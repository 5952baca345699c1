#pragma once

#include <filesystem>
#include <string_view>

namespace quarn {

/// This user's database of the long-term history: "Quarn/metrics.sqlite" in the folder for the data of
/// applications; empty when the user has no home folder.
std::filesystem::path metricsFile();

/// The archive of the live history, "live-history.plist" beside the database; empty as well.
std::filesystem::path liveHistoryFile();

/// Creates what is missing of a folder, or of a file and its folder, for this user alone: nobody else shall
/// see which programs were used when. Failures show when something is put into it.
void makePrivateFolder(const std::filesystem::path& folder);
void makePrivateFile(const std::filesystem::path& file);

/// Moves a broken database or archive out of the way under a new name, with its companion files and a text
/// that says what was wrong with it. Answers where it is now; throws std::filesystem::filesystem_error.
std::filesystem::path setAside(const std::filesystem::path& file, std::string_view error);

} // namespace quarn
