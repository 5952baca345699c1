#include "support/TempRoot.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <stdlib.h>

namespace quarn::testing {

namespace fs = std::filesystem;

TempRoot::TempRoot() {
    std::string pattern = (fs::temp_directory_path() / "quarn-test-XXXXXX").string();
    if (!::mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder: " + pattern);
    path_ = pattern;
}

TempRoot::~TempRoot() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

TempRoot& TempRoot::write(std::string_view relative, std::string_view content) {
    const fs::path file = path_ / relative;
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
    return *this;
}

TempRoot& TempRoot::files(std::string_view folder, std::string_view listing) {
    std::istringstream entries{std::string(listing)};
    for (std::string entry; std::getline(entries, entry, ';');) {
        const size_t equals = entry.find('=');
        write(std::string(folder) + '/' + entry.substr(0, equals), entry.substr(equals + 1) + '\n');
    }
    return *this;
}

TempRoot& TempRoot::link(std::string_view relative, std::string_view target) {
    const fs::path file = path_ / relative;
    fs::create_directories(file.parent_path());
    fs::remove(file);
    fs::create_symlink(fs::path(target), file);
    return *this;
}

TempRoot& TempRoot::folder(std::string_view relative) {
    fs::create_directories(path_ / relative);
    return *this;
}

TempRoot& TempRoot::remove(std::string_view relative) {
    fs::remove_all(path_ / relative);
    return *this;
}

TempRoot& TempRoot::copyFixture(std::string_view fixture, std::string_view relative) {
    fs::create_directories(path_ / relative);
    fs::copy(fs::path(QUARN_FIXTURES) / fixture, path_ / relative,
             fs::copy_options::recursive | fs::copy_options::copy_symlinks |
                 fs::copy_options::overwrite_existing);
    return *this;
}

TempRoot& TempRoot::unpack(std::string_view packed) {
    std::istringstream lines(fixture(packed));
    for (std::string line; std::getline(lines, line);) {
        const size_t equals = line.find('=');
        std::string content;
        for (size_t i = equals + 1; i < line.size(); ++i) {
            const bool escaped = line[i] == '\\' && ++i < line.size();
            content += !escaped ? line[i] : line[i] == 'n' ? '\n' : line[i] == '0' ? '\0' : line[i];
        }
        write(line.substr(0, equals), content + '\n');
    }
    return *this;
}

std::string readFile(const fs::path& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

sysinfo::SystemRoot capturedRoot(std::string_view folder) {
    return sysinfo::SystemRoot((fs::path(QUARN_FIXTURES) / folder).string());
}

std::string fixture(std::string_view relative) {
    const fs::path path = fs::path(QUARN_FIXTURES) / relative;
    EXPECT_TRUE(fs::exists(path)) << "missing fixture " << relative;
    return readFile(path);
}

} // namespace quarn::testing
