#include "HelperKit/ReplaceFile.h"

#include "support/TempRoot.h"

#include <sys/stat.h>
#include <system_error>
#include <thread>

namespace quarn::testing {
namespace {

namespace fs = std::filesystem;

unsigned modeOf(const fs::path& file) {
    struct stat status {};
    return ::stat(file.c_str(), &status) == 0 ? status.st_mode & 0777U : 0;
}

TEST(ReplaceFile, KeepsWhatAFileIsAndWhoMayReadIt) {
    TempRoot folder;
    const fs::path file = folder.path() / "file", link = folder.path() / "link";
    const mode_t mask = ::umask(027);
    replaceFile(file, "one", NewFile::forUserAlone);
    EXPECT_EQ(modeOf(file), 0600u);
    replaceFile(folder.path() / "shared", "one", NewFile::asUsual);
    EXPECT_EQ(modeOf(folder.path() / "shared"), 0640u);
    ::umask(mask);
    ::chmod(file.c_str(), 0604);
    fs::create_symlink("file", link);
    replaceFile(link, "two", NewFile::forUserAlone);
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(readFile(file), "two");
    EXPECT_EQ(modeOf(file), 0604u);

    const fs::path pipe = folder.path() / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    std::string read;
    std::thread reader([&] { read = readFile(pipe); });
    replaceFile(pipe, "three", NewFile::forUserAlone);
    reader.join();
    EXPECT_EQ(read, "three");
    EXPECT_TRUE(fs::is_fifo(pipe));
    EXPECT_THROW(replaceFile("/dev/full", "four", NewFile::asUsual), std::system_error);
    EXPECT_THROW(replaceFile(folder.path(), "five", NewFile::asUsual), std::system_error);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 4); // and nothing half made
}

} // namespace
} // namespace quarn::testing
