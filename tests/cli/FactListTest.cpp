#include "cli/FactList.h"

namespace quarn::cli {
namespace {

TEST(FactList, AlignsOverAllHeadings) {
    FactList facts(Charset::utf8);
    facts.heading("First");
    facts.add("A", "1");
    facts.add("Größe", "2");
    facts.heading("Second");
    facts.add("B", "", "denied");
    facts.add("C", "");
    facts.add("D", "\x1b[31mred");
    EXPECT_EQ(facts.text(), "First\n"
                            "  A      1\n"
                            "  Größe  2\n"
                            "\n"
                            "Second\n"
                            "  B      —  (denied)\n"
                            "  C      —\n"
                            "  D      \uFFFD[31mred\n");
}

} // namespace
} // namespace quarn::cli
