// The one-way dependencies between the folders, and what must never happen, read from the sources.
#include "support/TempRoot.h"

#include <map>
#include <set>

namespace {

using quarn::testing::readFile;
namespace fs = std::filesystem;

/// What each folder may include besides itself.
const std::map<std::string, std::set<std::string>> allowed{
    {"core", {}},
    {"HelperKit", {"core"}},
    {"ui/settings", {"HelperKit", "core"}},
    {"monitor", {"ui/settings", "HelperKit", "core"}},
    {"history", {"monitor", "ui/settings", "HelperKit", "core"}},
    {"inventory", {"monitor", "ui/settings", "HelperKit", "core"}},
    {"ui/modules", {"history", "monitor", "ui/settings", "HelperKit", "core"}},
    {"desktop", {"history", "inventory", "ui/modules", "monitor", "ui/settings", "HelperKit", "core"}},
    {"cli", {"history", "inventory", "ui/modules", "monitor", "ui/settings", "HelperKit", "core"}},
};

/// The folder that a path below src belongs to; the longest name wins ("ui/settings").
std::string folderOf(const std::string& relative) {
    std::string best;
    for (const auto& [folder, edges] : allowed)
        if (relative.starts_with(folder + "/") && folder.size() > best.size()) best = folder;
    return best;
}

struct Source {
    std::string path; ///< below src
    std::string text;
};

std::vector<Source> sources() {
    const fs::path root = fs::path(QUARN_SOURCE_DIR) / "src";
    std::vector<Source> result;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        const auto extension = entry.path().extension();
        if (extension != ".h" && extension != ".cpp" && extension != ".c") continue;
        result.push_back({fs::relative(entry.path(), root).string(), readFile(entry.path())});
    }
    return result;
}

std::vector<std::string> includes(const std::string& text, char open, char close) {
    std::vector<std::string> result;
    const std::string start = std::string("#include ") + open;
    for (size_t at = 0; (at = text.find(start, at)) != std::string::npos;) {
        at += start.size();
        result.push_back(text.substr(at, text.find(close, at) - at));
    }
    return result;
}

TEST(Architecture, IncludesFollowTheArrows) {
    const auto all = sources();
    ASSERT_GT(all.size(), 20u);
    for (const auto& source : all) {
        const std::string from = folderOf(source.path);
        ASSERT_FALSE(from.empty()) << source.path << " is in a folder that this test does not know";
        for (const auto& include : includes(source.text, '"', '"')) {
            const std::string to = folderOf(include);
            EXPECT_FALSE(to.empty()) << source.path << " includes " << include
                                     << ", which is not written from src";
            EXPECT_TRUE(to == from || allowed.at(from).contains(to))
                << source.path << " includes " << include;
        }
    }
}

TEST(Architecture, OnlyThePlatformFolderKnowsThePlatform) {
    for (const auto& source : sources()) {
        const bool platform = source.path.starts_with("core/linux/");
        for (const auto& include : includes(source.text, '"', '"'))
            EXPECT_TRUE(platform || !include.starts_with("core/linux/"))
                << source.path << " includes " << include;
        for (const auto& include : includes(source.text, '<', '>')) {
            const bool window = source.path.starts_with("desktop/");
            EXPECT_TRUE(window || !include.starts_with("Q")) << source.path << " includes Qt";
            const bool kernel = include.starts_with("linux/") || include.starts_with("asm/");
            EXPECT_TRUE(platform || !kernel) << source.path << " includes " << include;
        }
        if (platform) continue;
        for (const char* path : {"\"/proc", "\"/sys", "\"proc/", "\"sys/"})
            EXPECT_EQ(source.text.find(path), std::string::npos) << source.path << " spells " << path;
    }
}

} // namespace
