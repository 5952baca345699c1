// How readings are divided and laid out, and tables.
#include "ui/modules/CoreLayout.h"
#include "ui/modules/MemoryParts.h"
#include "ui/modules/TableLayout.h"

namespace quarn {
namespace {

TEST(CoreLayout, fitsAnyNumberOfCores) {
    for (const size_t cores : {0U, 1U, 2U, 8U, 20U, 64U, 128U, 512U, 4096U}) {
        for (const int width : {1, 60, 300, 640, 970, 2500}) {
            SCOPED_TRACE(std::to_string(cores) + " in " + std::to_string(width));
            const CoreLayout layout = coreLayout(cores, width);
            for (size_t core = 0; core < cores; ++core) {
                ASSERT_LT(layout.y(core) + layout.cellHeight, layout.height() + 1);
                ASSERT_GE(layout.cellWidth, 1);
                ASSERT_LE(layout.x(core) + layout.cellWidth, std::max(width, 300) + 0.01);
            }
            if (cores <= 512 && width >= 640) {
                EXPECT_LE(layout.height(), 300);
            }
        }
    }
    EXPECT_TRUE(coreLayout(64, 970).labelled);
    EXPECT_FALSE(coreLayout(512, 970).labelled);
}

TEST(MemoryParts, makeUpTheTotal) {
    SCMem mem{};
    EXPECT_TRUE(memoryParts(mem).empty());
    mem.total = 1000, mem.app = 300, mem.wired = 100, mem.compressed = 50, mem.cached = 400,
    mem.freeBytes = 100;
    uint64_t sum = 0;
    for (const auto& part : memoryParts(mem)) sum += part.bytes;
    EXPECT_EQ(sum, 1000U);
    EXPECT_EQ(memoryParts(mem)[3].name, "Other");
    mem.cached = 445; // a rest too small to name
    EXPECT_EQ(memoryParts(mem).size(), 5U);
    mem.cached = 900; // counters read one after the other may add up to more
    EXPECT_EQ(memoryParts(mem).size(), 5U);
}

TEST(TableLayout, ComesBackFromItsText) {
    using Visible = TableLayout::Column::Visible;
    const TableLayout layout{
        {{"name", 240, Visible::yes}, {"cpu", 80, Visible::no}}, "cpu", TableLayout::Direction::descending};
    EXPECT_EQ(layout.text(), "name 240,-cpu 80;cpu desc");
    EXPECT_EQ(TableLayout::fromText(layout.text()), layout);
}

TEST(TableLayout, LeavesOutWhatItDoesNotUnderstand) {
    for (const char* text : {"", ";", ",,,;", "name", "name x,-,- 5, 7", "name 99999999999;", "name -5"})
        EXPECT_EQ(TableLayout::fromText(text), TableLayout()) << text;
    EXPECT_EQ(TableLayout::fromText("bad,name 10;pid up").text(), "name 10;pid asc");
}

} // namespace
} // namespace quarn
