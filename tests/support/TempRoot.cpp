#include "support/TempRoot.h"

#include <fstream>
#include <gtest/gtest.h>
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

std::string fixture(std::string_view relative) {
    std::ifstream file(fs::path(QUARN_FIXTURES) / relative, std::ios::binary);
    EXPECT_TRUE(file.good()) << "missing fixture " << relative;
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

} // namespace quarn::testing
