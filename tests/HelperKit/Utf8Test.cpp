#include "HelperKit/Utf8.h"

namespace {

using namespace quarn;

TEST(Utf8, WellFormedTextIsLeftAlone) {
    for (const std::string& text :
         {std::string(), std::string("plain, longer than a chunk"), std::string("nul\0inside", 10),
          std::string("größe ключ 進程 🦊"), std::string("\xC2\x80 \xDF\xBF"),
          std::string("\xE0\xA0\x80"), std::string("\xED\x9F\xBF \xEE\x80\x80"),
          std::string("\xF0\x90\x80\x80 \xF4\x8F\xBF\xBF")}) {
        EXPECT_TRUE(isUtf8(text)) << text;
        EXPECT_EQ(repairedUtf8(text), text);
    }
}

TEST(Utf8, IllFormedStretchesBecomeOneReplacementEach) {
    const std::pair<const char*, std::string> cases[]{
        // ? stands for the replacement
        {"12345678\xFF", "12345678?"},
        {"a\x80 b", "a? b"},                         // continuation without a start
        {"\xC0\xAF\xC1\xBF", "????"},                // overlong
        {"\xE0\x9F\xBF\xF0\x8F\xBF\xBF", "???????"}, // overlong
        {"\xED\xA0\x80", "???"},                     // surrogate
        {"\xF4\x90\x80\x80\xF5", "?????"},           // beyond U+10FFFF
        {"\xE2\x82", "?"},                           // cut at the end
        {"\xF0\x9F\xA6x\xC3(", "?x?("},              // cut by another character
    };
    for (const auto& [text, repaired] : cases) {
        EXPECT_FALSE(isUtf8(text));
        std::string expected;
        for (const char each : repaired)
            expected += each == '?' ? std::string("\uFFFD") : std::string(1, each);
        EXPECT_EQ(repairedUtf8(text), expected);
    }
}

TEST(Utf8, EveryCharacterSurvivesBeingWrittenAndRead) {
    for (char32_t code = 0; code <= 0x10FFFF; ++code) {
        if (code >= 0xD800 && code <= 0xDFFF) continue;
        std::string text;
        appendCharacter(text, code);
        const auto read = firstCharacter(text);
        ASSERT_TRUE(read.wellFormed && read.code == code && read.bytes == text.size()) << uint32_t{code};
    }
}

} // namespace
