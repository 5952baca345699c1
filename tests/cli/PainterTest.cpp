#include "cli/view/Painter.h"
#include "cli/live/KeyReader.h"

#include <random>

namespace quarn::cli {
namespace {

/// As much of a terminal as a painter uses: it understands cursor positions, erasing and styles.
class Screen {
public:
    explicit Screen(Size size) : canvas_(size, Charset::utf8) {}

    void take(std::string_view bytes) {
        while (!bytes.empty()) {
            if (bytes.front() == '\x1b') {
                takeEscape(bytes);
                continue;
            }
            const std::string_view run = bytes.substr(0, bytes.find('\x1b'));
            column_ = canvas_.put(row_, column_, run);
            bytes.remove_prefix(run.size());
        }
    }
    std::string row(int row) const { return canvas_.rowText(row); }

private:
    void takeEscape(std::string_view& bytes) {
        const size_t end = bytes.find_first_of("HJm");
        ASSERT_NE(end, std::string_view::npos);
        const std::string parameters(bytes.substr(2, end - 2));
        if (bytes[end] == 'H') {
            ASSERT_EQ(std::sscanf(parameters.c_str(), "%d;%d", &row_, &column_), 2);
            --row_;
            --column_;
        } else if (bytes[end] == 'J') {
            canvas_ = Canvas(canvas_.size(), Charset::utf8);
        }
        bytes.remove_prefix(end + 1);
    }

    Canvas canvas_;
    int row_ = 0;
    int column_ = 0;
};

TEST(Painter, DifferencesBringEachFrameToTheScreen) {
    constexpr Size size{20, 4};
    const std::vector<std::string> words{"a", "load", "日本", "e\u0301", "—", "     ", "━━━", "█▁", ""};
    std::mt19937 random(7);
    Screen screen(size);
    Painter painter(Palette(ColourDepth::trueColour, Background::dark));
    for (int i = 0; i < 200; ++i) {
        Canvas frame(size, Charset::utf8);
        for (int word = 0; word < 12; ++word) {
            const Style style{static_cast<Ink>(random() % inkCount)};
            frame.put(static_cast<int>(random() % 4), static_cast<int>(random() % 20),
                      words[random() % words.size()], style);
        }
        screen.take(painter.paint(frame));
        for (int row = 0; row < size.rows; ++row) ASSERT_EQ(screen.row(row), frame.rowText(row)) << i;
    }
}

TEST(Painter, WhatDidNotChangeIsNotSent) {
    Canvas frame({40, 10}, Charset::utf8);
    frame.put(2, 3, "unchanged");
    Painter painter(Palette(ColourDepth::none, Background::dark));
    EXPECT_GT(painter.paint(frame).size(), 0u);
    EXPECT_EQ(painter.paint(frame), "");
    frame.put(5, 1, "x");
    EXPECT_EQ(painter.paint(frame), "\x1b[6;2H\x1b[0mx\x1b[0m");
    painter.forget();
    EXPECT_TRUE(painter.paint(frame).find("unchanged") != std::string::npos);
}

TEST(Palette, ColoursFollowWhatTheTerminalSupports) {
    EXPECT_EQ(Palette(ColourDepth::none, Background::dark).select({Ink::cpu, Weight::bold}), "\x1b[0;1m");
    EXPECT_EQ(Palette(ColourDepth::sixteen, Background::dark).select({Ink::critical}), "\x1b[0;91m");
    EXPECT_EQ(Palette(ColourDepth::trueColour, Background::light).select({Ink::cpu}),
              "\x1b[0;38;2;0;114;178m");
    EXPECT_EQ(Palette(ColourDepth::indexed, Background::light).select({Ink::cpu}), "\x1b[0;38;5;25m");

    static const char *term, *colorTerm, *noColor; // what the environment says
    const auto depth = [](const char* newTerm, const char* newColorTerm = nullptr,
                          const char* newNoColor = nullptr) {
        term = newTerm, colorTerm = newColorTerm, noColor = newNoColor;
        return colourDepth([](const char* name) {
            return name == std::string_view("TERM")        ? term
                   : name == std::string_view("COLORTERM") ? colorTerm
                                                           : noColor;
        });
    };
    EXPECT_EQ(depth("xterm"), ColourDepth::sixteen);
    EXPECT_EQ(depth("xterm-256color"), ColourDepth::indexed);
    EXPECT_EQ(depth("xterm-256color", "truecolor"), ColourDepth::trueColour);
    EXPECT_EQ(depth("xterm-256color", nullptr, "1"), ColourDepth::none);
    EXPECT_EQ(depth("xterm", nullptr, ""), ColourDepth::sixteen) << "empty counts as unset";
    EXPECT_EQ(depth("dumb", "truecolor"), ColourDepth::none);
    EXPECT_EQ(depth(nullptr), ColourDepth::none);
}

TEST(KeyReader, OnlyPlainKeysGetThrough) {
    const std::vector<std::pair<std::string_view, std::string_view>> cases{
        {"qm ", "qm "},
        {"\x1b[A\x1b[1;5Cq", "q"},       // arrow keys
        {"\x1bOPq", "q"},                // a function key
        {"\x1b[<0;10;5Mq", "q"},         // the mouse
        {"\x1b]11;rgb:1/2/3\x07q", "q"}, // an answer
        {"\x1b]11;rgb:1/2/3\x1b\\q", "q"},
        {"\x1b]q", "q"}, // Alt+] and then a key
        {"\x1bPm", "m"}, // Alt+P
        {"\x1b\x1b[Bq", "q"},
    };
    for (const auto& [bytes, expected] : cases) {
        for (const size_t step : {bytes.size(), size_t{1}}) { // at once, and byte by byte
            std::string keys;
            KeyReader reader;
            reader.onKey = [&](char key) { keys += key; };
            for (size_t i = 0; i < bytes.size(); i += step) reader.feed(bytes.substr(i, step));
            EXPECT_EQ(keys, expected);
        }
    }
}

TEST(KeyReader, RecognisesTheBackground) {
    EXPECT_EQ(parseBackground("11;rgb:1d1d/2121/2626"), Background::dark);
    EXPECT_EQ(parseBackground("11;rgb:ff/ff/ff"), Background::light);
    for (const std::string_view other : {"", "11;rgb:", "11;rgb:ff/ff", "11;rgb:ff/ff/fffff", "11;rgb:g/0/0",
                                         "10;rgb:ff/ff/ff", "11;rgb:ff/ff/ff/ff"}) {
        EXPECT_EQ(parseBackground(other), std::nullopt) << other;
    }
    std::optional<Background> told;
    KeyReader reader;
    reader.onBackground = [&](Background background) { told = background; };
    reader.feed("\x1b]11;rgb:ffff/ff");
    reader.feed("ff/ffff\x1b\\");
    EXPECT_EQ(told, Background::light);
}

} // namespace
} // namespace quarn::cli
