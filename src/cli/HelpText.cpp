#include "cli/HelpText.h"

#include <algorithm>

namespace quarn::cli {
namespace {

constexpr size_t width = 80;
constexpr size_t secondColumn = 24;

/// `text` broken between words; its own line ends stay, and after one that is followed by blanks nothing is
/// broken, as in a list.
std::string wrapped(std::string_view text) {
    std::string result;
    size_t column = 0;
    while (!text.empty()) {
        const size_t end = std::min(text.find_first_of(" \n", 1), text.size());
        std::string_view word = text.substr(0, end);
        text.remove_prefix(end);
        const bool lineEnd = word.front() == '\n';
        if (lineEnd || (word.size() > 1 && word.front() == ' ' && column + word.size() > width)) {
            word.remove_prefix(1);
            result += '\n';
            column = 0;
        }
        result += word;
        column += word.size();
    }
    return result;
}

std::string row(std::string_view left, std::string_view right) {
    std::string line = "  " + std::string(left);
    line.resize(std::max(line.size() + 1, secondColumn), ' ');
    return line + std::string(right) + "\n";
}

std::string optionLines(const Command* command) {
    std::string text = "\nOptions:\n";
    for (const OptionRow& option : optionRows()) {
        if (command == nullptr || (command->takes & option.option) == 0) continue;
        std::string left(option.name);
        if (!option.argument.empty()) left += ' ' + std::string(option.argument);
        text += row(left, option.help);
    }
    text += row("--root DIR", "read the machine captured in the folder DIR");
    text += row("-h, --help", "print this help");
    if (command == nullptr) text += row("--version", "print the version");
    return text;
}

} // namespace

std::string helpText(const Command* command) {
    if (command != nullptr) {
        std::string text =
            "Usage: quarn " + std::string(command->name) + ' ' + std::string(command->arguments);
        text += "\n\n" + wrapped(command->summary) + "\n";
        if (!command->details.empty()) text += "\n" + wrapped(command->details) + "\n";
        return text + optionLines(command) + "\nExample:\n  " + std::string(command->example) + "\n";
    }
    std::string text = "Usage: quarn [options] [command]\n\n"
                       "Shows what this machine is doing. Without a command: a live view in the terminal,\n"
                       "or one snapshot as text when the output is not a terminal.\n\nCommands:\n";
    for (const Command& each : commands()) text += row(each.name, each.summary);
    return text + optionLines(nullptr) +
           "\nKeys of the live view: q quits, space freezes the picture, c m d p n sort the\n"
           "processes by CPU, memory, disk, PID, name.\n\n"
           "Example:\n  quarn processes --sort memory --limit 10\n\n"
           "`quarn COMMAND --help` says more about a command. Exit status: 0 success,\n"
           "1 failure, 2 wrong usage.\n";
}

} // namespace quarn::cli
