#include "UsageMessage.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string_view>
#include <vector>

#include "style/Suggestion.h"

namespace gxtool {

namespace {

using gxtext::nearestName;
using gxtext::suggestion;

std::vector<std::string_view> commandNames(const CLI::App& app) {
    std::vector<std::string_view> names;
    for (const CLI::App* command : app.get_subcommands({})) names.push_back(command->get_name());
    return names;
}

// Long names, without dashes.
std::vector<std::string_view> optionNames(const CLI::App& app) {
    std::vector<std::string_view> names;
    for (const CLI::Option* option : app.get_options()) {
        names.insert(names.end(), option->get_lnames().begin(), option->get_lnames().end());
    }
    return names;
}

// The command line's first word that nothing takes, an option.
std::string reasonOfOption(const CLI::App& app, const CLI::App* command, const std::string& word) {
    const std::string option = word.substr(0, word.find('='));
    const std::string name = option.substr(std::min(option.find_first_not_of('-'), option.size()));
    std::vector<std::string_view> names = optionNames(app);
    if (command) {
        const std::vector<std::string_view> more = optionNames(*command);
        names.insert(names.end(), more.begin(), more.end());
        if (std::find(more.begin(), more.end(), name) != more.end()) {
            return option + " goes after " + command->get_name();
        }
    }
    if (const std::string_view* nearest = nearestName(name, names)) {
        return "unknown option " + option + "; did you mean --" + std::string(*nearest) + "?";
    }
    if (command) return "unknown option " + option;
    return "a command goes first, not " + option + suggestion("", commandNames(app));
}

// What is wrong with a command line that cannot be parsed.
std::string reasonOf(const CLI::App& app, const CLI::App* command, const CLI::ParseError& error) {
    const std::vector<std::string> unknown = app.remaining(true);
    if (!command && unknown.empty()) {
        return "a command is missing" + suggestion("", commandNames(app));
    }
    const bool isUnknown = dynamic_cast<const CLI::ExtrasError*>(&error) || !command;
    if (unknown.empty() || !isUnknown) return error.what();
    const std::string& word = unknown.front();
    if (word.starts_with('-')) return reasonOfOption(app, command, word);
    if (command) return "unexpected argument " + word;
    return "no command is called " + word + suggestion(word, commandNames(app));
}

}  // namespace

std::string usageMessage(const CLI::App& app, const CLI::ParseError& error) {
    const auto commands = app.get_subcommands();
    const CLI::App* command = commands.empty() ? nullptr : commands.front();
    return reasonOf(app, command, error) + "\nRun gxtext" +
           (command ? " " + command->get_name() : "") + " --help for more information.";
}

}  // namespace gxtool
