#include "ui/modules/TableLayout.h"

namespace quarn {
namespace {

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
