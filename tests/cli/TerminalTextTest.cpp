#include "cli/TerminalText.h"
#include "cli/FactList.h"
#include "cli/TextTable.h"

namespace quarn::cli {
namespace {

TEST(TerminalText, FitsSafeTextIntoCells) {
    struct Case {
        std::string_view text;
        int cells;
        std::string_view utf8;
        std::string_view ascii;
    };
    const std::vector<Case> cases{
        {"firefox", 7, "firefox", "firefox"},
        {"firefox", 6, "firef…", "firef~"},
        {"firefox", 1, "…", "~"},
        {"firefox", 0, "", ""},
        {"größe", 5, "größe", "gr??e"},
        {"日本語", 6, "日本語", "???"},
        {"日本語", 5, "日本…", "???"}, // a wide character is never cut in half
        {"日本語", 4, "日…", "???"},
        {"e\u0301clair", 6, "e\u0301clair", "e?cla~"}, // a combining mark takes no cell
        {"a\x1b[2Jb\n", 9, "a\uFFFD[2Jb\uFFFD", "a?[2Jb?"},
        {"\u202Egnp.exe\u2066", 9, "\uFFFDgnp.exe\uFFFD", "?gnp.exe?"},
        {"zero\u200Bwidth", 11, "zero\uFFFDwidth", "zero?width"},
        {"\xff\xe6\x97", 5, "\uFFFD\uFFFD", "??"},
        {"\xc2\x9b\x7f", 5, "\uFFFD\uFFFD", "??"}, // control characters beyond ASCII
        {"— … ━ ▼", 9, "— … ━ ▼", "- ~ = *"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(fitted(c.text, c.cells, Charset::utf8), c.utf8) << c.text;
        EXPECT_EQ(fitted(c.text, c.cells, Charset::ascii), c.ascii) << c.text;
    }
}

TEST(TerminalText, TheLocaleDecidesTheCharset) {
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) ::unsetenv(variable);
    EXPECT_EQ(charsetOfEnvironment(), Charset::ascii);
    ::setenv("LANG", "de_DE.UTF-8", 1);
    EXPECT_EQ(charsetOfEnvironment(), Charset::utf8);
    ::setenv("LC_CTYPE", "POSIX", 1); // the narrower variable wins
    EXPECT_EQ(charsetOfEnvironment(), Charset::ascii);
    ::setenv("LC_ALL", "C.utf8", 1);
    EXPECT_EQ(charsetOfEnvironment(), Charset::utf8);
}

TEST(TextTable, AlignsByCellsNotBytes) {
    TextTable table({{"Name"}, {"Size", Align::right}, {"Where"}}, Charset::utf8);
    table.add({"größe", "1 B", "here"});
    table.add({"日本", "—", ""});
    table.add({"a\nb", "100 B", "\x1b[m"});
    EXPECT_EQ(table.text(), "Name    Size  Where\n"
                            "größe    1 B  here\n"
                            "日本       —\n"
                            "a\uFFFDb    100 B  \uFFFD[m\n");
}

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
