#include "cli/CommandLine.h"

#include "cli/Command.h"
#include "cli/HelpText.h"
#include "cli/Output.h"
#include "ui/modules/HistoryText.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <functional>
#include <string_view>
#include <vector>

namespace quarn::cli {
namespace {

constexpr double longestInterval = 86400;

struct Parsed {
    std::string root;
    Options options;
};

/// A number of seconds from 0 to a day; "nan" and "inf" are none.
std::string checkSeconds(const std::string& text) {
    double seconds = -1;
    if (CLI::detail::lexical_cast(text, seconds) && seconds >= 0 && seconds <= longestInterval) return {};
    return "'" + text + "' is not a number of seconds from 0 to 86400";
}

std::string checkCount(const std::string& text) {
    const bool digits = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
    if (digits && text.size() < 19) return {};
    return "'" + text + "' is not a whole number";
}

/// The ids of a table of traits.
template <class Traits, size_t count>
std::array<std::string_view, count> idsOf(const std::array<Traits, count>& table) {
    std::array<std::string_view, count> ids;
    std::transform(table.begin(), table.end(), ids.begin(), [](const Traits& traits) { return traits.id; });
    return ids;
}

template <class Choice>
struct ChoiceOf {
    using Type = Choice;
};
template <class Choice>
struct ChoiceOf<std::optional<Choice>> {
    using Type = Choice;
};

/// An option whose value is one of `names`, which are those of the values of `Choice` or of what it holds.
template <class Choice, size_t count>
void addChoice(CLI::App& app, const std::string& option, const std::array<std::string_view, count>& names,
               Choice& choice) {
    const auto indexOf = [names](const std::string& text) {
        return static_cast<size_t>(std::find(names.begin(), names.end(), text) - names.begin());
    };
    const auto check = [names, indexOf](const std::string& text) {
        if (indexOf(text) < count) return std::string();
        std::string message = "'" + text + "' is none of ";
        for (const auto name : names) message.append(name == names.front() ? "" : ", ").append(name);
        return message;
    };
    const auto set = [&choice, indexOf](const std::string& text) {
        choice = static_cast<typename ChoiceOf<Choice>::Type>(indexOf(text));
    };
    app.add_option_function<std::string>(option, set)->check(CLI::Validator(check, ""));
}

void addOptions(CLI::App& app, const Command& command, Parsed& parsed) {
    const CLI::Validator seconds(checkSeconds, ""), count(checkCount, "");
    auto& connections = parsed.options.connections;
    for (const OptionRow& row : optionRows()) {
        if ((command.takes & row.option) == 0) continue;
        const std::string name(row.name);
        switch (row.option) {
        case takesJson:
            app.add_flag_callback(name, [&parsed] { parsed.options.form = Options::Form::json; });
            break;
        case takesInterval: app.add_option(name, parsed.options.interval)->check(seconds); break;
        case takesCount: app.add_option(name, parsed.options.count)->check(count); break;
        case takesSeconds: app.add_option(name, parsed.options.seconds)->check(count); break;
        case takesSort: addChoice(app, name, processOrderNames, parsed.options.order); break;
        case takesLimit: app.add_option(name, parsed.options.limit)->check(count); break;
        case takesProtocol: addChoice(app, name, connectionProtocolNames, connections.protocol); break;
        case takesScope: addChoice(app, name, connectionScopeNames, connections.scope); break;
        case takesSearch: app.add_option(name, connections.search); break;
        case takesGrouping: addChoice(app, name, connectionGroupingNames, connections.grouping); break;
        case takesSpan: addChoice(app, name, idsOf(historySpans), parsed.options.span); break;
        case takesMetric: addChoice(app, name, idsOf(appMetrics), parsed.options.metric); break;
        case takesConfirmation:
            app.add_flag_callback(name,
                                  [&parsed] { parsed.options.confirmation = Options::Confirmation::given; });
            break;
        default: break;
        }
    }
    if ((command.takes & takesArguments) != 0) app.add_option("arguments", parsed.options.words);
    if ((command.takes & takesWords) != 0) {
        app.fallthrough(false); // its words are for it alone
        app.prefix_command();
    }
}

/// Checks --root early, so that a slip of the pen does not look like a machine without readings.
sysinfo::SystemRoot openRoot(const std::string& directory) {
    namespace fs = std::filesystem;
    std::error_code error;
    if (!fs::is_directory(directory, error))
        throw CLI::ValidationError("--root", directory + " is no folder");
    sysinfo::SystemRoot root(directory);
    if (!fs::is_directory(root.path("proc"), error) && !fs::is_directory(root.path("sys"), error)) {
        throw CLI::ValidationError("--root", directory + " holds neither proc nor sys");
    }
    return root;
}

/// The message of a usage error in this program's words.
std::string wording(const CLI::Error& error, const CLI::App& app) {
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
        const std::string_view message = error.what(); // "--interval: 1 required FLOAT missing"
        return std::string(message.substr(0, message.find(':'))) + " needs a value";
    }
    if (dynamic_cast<const CLI::ExtrasError*>(&error) == nullptr) return error.what();
    const auto rest = app.remaining(true);
    const std::string first = rest.empty() ? std::string() : rest.front();
    const char* kind = first.starts_with("-")          ? "option"
                       : app.get_subcommands().empty() ? "command"
                                                       : "argument";
    return std::string("unknown ") + kind + " '" + first + "'";
}

/// The exit status of `work`, whatever it throws.
int guarded(const std::function<int()>& work) {
    try {
        return work();
    } catch (const OutputClosed&) {
        return success;
    } catch (const std::exception& error) {
        complain(error.what());
        return failure;
    }
}

int print(std::string_view text) {
    writeOut(text);
    return success;
}

} // namespace

int runCommandLine(int argc, const char* const* argv) {
    std::signal(SIGPIPE, SIG_IGN); // a reader that left shows as a failed write
    std::vector<const char*> arguments(argv, argv + argc);
    if (argc > 1 && std::string_view(argv[1]) == "help") { // "quarn help disks" is "quarn disks --help"
        arguments.erase(arguments.begin() + 1);
        arguments.push_back("--help");
    }

    Parsed parsed;
    CLI::App app;
    app.set_help_flag("-h,--help");
    app.set_version_flag("--version", "");
    app.add_option("--root", parsed.root);
    app.require_subcommand(0, 1);
    app.fallthrough();
    for (const Command& command : commands()) {
        addOptions(*app.add_subcommand(std::string(command.name)), command, parsed);
    }
    const auto chosen = [&]() -> const Command* {
        for (const Command& command : commands()) {
            if (app.got_subcommand(std::string(command.name))) return &command;
        }
        return nullptr;
    };
    try {
        app.parse(argc, arguments.data());
        if (app.count("--root") > 0) parsed.options.root = openRoot(parsed.root);
    } catch (const CLI::CallForVersion&) {
        return guarded([] { return print("quarn " QUARN_VERSION "\n"); });
    } catch (const CLI::Success&) {
        return guarded([&] { return print(helpText(chosen())); });
    } catch (const CLI::Error& error) {
        const Command* command = chosen();
        complain(wording(error, app) + "; see quarn " + (command ? std::string(command->name) + " " : "") +
                 "--help");
        return wrongUsage;
    }
    const Command* command = chosen();
    if (command != nullptr && (command->takes & takesWords) != 0)
        parsed.options.words = app.get_subcommand(std::string(command->name))->remaining();
    return guarded(
        [&] { return command == nullptr ? runLive(parsed.options) : command->run(parsed.options); });
}

} // namespace quarn::cli
