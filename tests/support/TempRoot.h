#pragma once

#include "core/SystemRoot.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace quarn::testing {

/// A folder of its own that is removed at the end: a place for files, or a small captured machine.
class TempRoot {
public:
    TempRoot();
    ~TempRoot();
    TempRoot(const TempRoot&) = delete;
    TempRoot& operator=(const TempRoot&) = delete;

    const std::filesystem::path& path() const { return path_; }
    sysinfo::SystemRoot root() const { return sysinfo::SystemRoot(path_.string()); }

    /// Writes `relative` ("proc/stat") with its folders, replacing a former content.
    TempRoot& write(std::string_view relative, std::string_view content);
    /// Writes files of one line each into `folder`: "speed=-1;duplex=unknown".
    TempRoot& files(std::string_view folder, std::string_view listing);
    TempRoot& link(std::string_view relative, std::string_view target);
    TempRoot& folder(std::string_view relative);
    TempRoot& remove(std::string_view relative);
    /// Copies a folder of tests/fixtures into `relative`.
    TempRoot& copyFixture(std::string_view fixture, std::string_view relative = "");
    /// Writes the files of a packed tree of tests/fixtures: "path=content" on each line, with \n, \0 and
    /// \\ for line feeds, NULs and backslashes. For machines of a thousand one-number files.
    TempRoot& unpack(std::string_view fixture);

private:
    std::filesystem::path path_;
};

std::string readFile(const std::filesystem::path& path); ///< empty when it cannot be read
/// The captured machine in a folder of tests/fixtures.
sysinfo::SystemRoot capturedRoot(std::string_view folder);
/// The content of a file of tests/fixtures; fails the test when it is missing.
std::string fixture(std::string_view relative);

} // namespace quarn::testing
