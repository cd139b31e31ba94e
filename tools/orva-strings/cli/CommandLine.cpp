#include "tools/orva-strings/cli/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <deque>
#include <map>
#include <string_view>
#include <utility>

#include <OrvaLanguage/Version.h>

#include "tools/orva-strings/cli/Arguments.h"
#include "tools/orva-strings/cli/Nearest.h"
#include "tools/orva-strings/cli/UsageError.h"

namespace {

constexpr char kHeading[] = "Commands";  // of the list of them in the help

// An empty name (an unset variable) is an error, not the built-in key.
std::string NamesAFile(std::string name) {
    Unmark(name);
    return name.empty() ? "the name is empty" : "";
}

// Whether a value is one of the choices.
std::string IsAmong(const std::string& choices, std::string value) {
    Unmark(value);
    const bool isOne = value.find('|') == std::string::npos &&
                       ('|' + choices + '|').find('|' + value + '|') != std::string::npos;
    return isOne ? "" : "must be one of " + choices;
}

// Parses one command line and keeps the command that it found.
class Parser {
public:
    explicit Parser(const Commands& commands);

    // See ParseCommandLine.
    Command* Parse(std::vector<std::string> arguments, std::ostream& out);

private:
    struct Group {
        CLI::App* app;
        std::string prefix;  // of its commands' names: "key ", or empty for the tool itself
    };

    Group& GroupOf(const Command& command);
    void Add(Command& command);

    // Each returns what is wrong, or an empty string.
    static std::string UnknownCommand(const Group& group);
    std::string UnknownOption(const std::vector<std::string>& arguments) const;
    std::string NeedlessValue(const std::vector<std::string>& arguments) const;
    static std::string NoCommand(const Group& group);
    std::string WhatIsWrong(const CLI::ParseError& error,
                            const std::vector<std::string>& arguments) const;

    CLI::App m_app{"Inspects and mends strings files and manages their protected entries.",
                   "orva-strings"};
    std::deque<Group> m_groups;  // the tool itself, then the groups of commands
    std::deque<Arguments> m_arguments;
    Command* m_command = nullptr;
    const Arguments* m_found = nullptr;  // the arguments of that command
};

std::string Footer(const std::vector<const char*>& examples) {
    std::string footer = "Examples:\n";
    for (const char* const example : examples) {
        footer += "  orva-strings ";
        footer += example;
        footer += '\n';
    }
    return footer;
}

Parser::Parser(const Commands& commands) {
    m_app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    m_app.require_subcommand(1);
    m_app.set_version_flag("--version", ORVA_VERSION_STRING);
    m_groups.push_back({&m_app, ""});
    std::vector<const char*> examples;
    for (const auto& command : commands) {
        Add(*command);
        const std::vector<const char*>& own = command->Text().examples;
        examples.insert(examples.end(), own.begin(), own.end());
    }
    m_app.footer(Footer(examples) +
                 "Exit status: 0 done, 1 a problem in the file, 2 wrong usage or a system error.");
}

Parser::Group& Parser::GroupOf(const Command& command) {
    const char* const name = command.Text().group.name;
    if (name == nullptr) {
        return m_groups.front();
    }
    const std::string prefix = std::string(name) + ' ';
    const auto found = std::find_if(m_groups.begin(), m_groups.end(),
                                    [&](const Group& group) { return group.prefix == prefix; });
    if (found != m_groups.end()) {
        return *found;
    }
    m_groups.push_back({m_app.add_subcommand(name, command.Text().group.summary), prefix});
    m_groups.back().app->group(kHeading)->require_subcommand(1);
    return m_groups.back();
}

void Parser::Add(Command& command) {
    const CommandText& text = command.Text();
    CLI::App* const app = GroupOf(command).app->add_subcommand(text.name, text.summary);
    app->group(kHeading);
    if (!text.examples.empty()) {
        app->footer(Footer(text.examples));
    }
    Arguments& arguments = m_arguments.emplace_back(*app);
    command.Declare(arguments);
    app->callback([this, &command, &arguments] {
        m_command = &command;
        m_found = &arguments;
    });
}

// Names an unknown command, and the one that was probably meant.
std::string Parser::UnknownCommand(const Group& group) {
    const std::vector<std::string> unknown = group.app->remaining();
    if (unknown.empty() || unknown.front().compare(0, 1, "-") == 0) {  // an option
        return "";
    }
    std::string word = unknown.front();
    Unmark(word);
    Nearest nearest(word);
    for (const CLI::App* const command : group.app->get_subcommands({})) {
        nearest.Offer(command->get_name());
    }
    return "unknown command '" + group.prefix + word + '\'' + nearest.DidYouMean(group.prefix);
}

// Names the first option that its command does not have. Nothing after -- is an option.
std::string Parser::UnknownOption(const std::vector<std::string>& arguments) const {
    const auto end = std::find(arguments.begin(), arguments.end(), "--");
    for (std::string& word : m_app.remaining(true)) {
        if (word.size() > 1 && word.front() == '-' &&
            std::find(arguments.begin(), end, word) != end) {
            std::string value = word.substr(ValueBegin(word));
            Unmark(value);
            word.replace(ValueBegin(word), std::string::npos, value);
            const bool isLong = word.compare(0, 2, "--") == 0;
            return "unknown option '" + (isLong ? word.substr(0, word.find('=')) : word) + '\'';
        }
    }
    return "";
}

// Names the first flag that was given a value.
std::string Parser::NeedlessValue(const std::vector<std::string>& arguments) const {
    for (const std::string& word : arguments) {
        const std::string name = word.substr(0, word.find('='));
        for (const Arguments& known : m_arguments) {
            if (name != word && std::count(known.Flags().begin(), known.Flags().end(), name) != 0) {
                return name + " takes no value";
            }
        }
    }
    return "";
}

std::string Parser::NoCommand(const Group& group) {
    if (!group.app->get_subcommands().empty()) {
        return "";
    }
    const std::string name = group.prefix.substr(0, group.prefix.find(' '));
    return "a command is required" + (name.empty() ? "" : " after " + name);
}

std::string Parser::WhatIsWrong(const CLI::ParseError& error,
                                const std::vector<std::string>& arguments) const {
    for (const Group& group : m_groups) {
        if (std::string text = UnknownCommand(group); !text.empty()) {
            return text;
        }
    }
    if (std::string text = UnknownOption(arguments); !text.empty()) {
        return text;
    }
    for (const Group& group : m_groups) {
        if (group.app == &m_app || m_app.got_subcommand(group.app)) {
            if (std::string text = NoCommand(group); !text.empty()) {
                return text;
            }
        }
    }
    if (error.get_name() == "ArgumentMismatch") {
        if (std::string text = NeedlessValue(arguments); !text.empty()) {
            return text;
        }
    }
    std::string text = error.what();
    text.erase(std::remove(text.begin(), text.end(), '\n'), text.end());  // MarkSpecial's
    return text;
}

Command* Parser::Parse(std::vector<std::string> arguments, std::ostream& out) {
    MarkSpecial(arguments);
    try {
        // CLI11 takes a vector in reverse order.
        m_app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {  // help or version
            m_app.exit(error, out, out);
            return nullptr;
        }
        throw UsageError(WhatIsWrong(error, arguments) + " (see --help)");
    }
    m_found->Finish();
    return m_command;
}

}  // namespace

void Arguments::Add(const Argument& argument, std::string& value) {
    Declare(argument, *m_command.add_option(argument.name, value, argument.help));
    m_values.emplace_back(argument.role, &value);
}

void Arguments::Add(const Argument& argument, std::vector<std::string>& values) {
    CLI::Option* const option = m_command.add_option(argument.name, values, argument.help);
    option->allow_extra_args(argument.name[0] != '-');  // one value after each option
    Declare(argument, *option);
    m_lists.emplace_back(argument.role, &values);
}

void Arguments::AddFlag(const char* name, const char* help, bool& isSet) {
    m_options[name] = m_command.add_flag(name, isSet, help)->disable_flag_override();
    m_flags.emplace_back(name);
}

void Arguments::Declare(const Argument& argument, CLI::Option& option) {
    option.type_name(argument.value)->required(argument.isRequired);
    if (argument.role != Role::kText) {
        option.check(NamesAFile);
    }
    if (argument.choices != nullptr) {
        option.check([choices = std::string(argument.choices)](const std::string& value) {
            return IsAmong(choices, value);
        });
    }
    if (argument.excludes != nullptr) {
        option.excludes(m_options.at(argument.excludes));
    }
    m_options[argument.name] = &option;
}

Command* ParseCommandLine(const Commands& commands, std::vector<std::string> arguments,
                          std::ostream& out) {
    return Parser(commands).Parse(std::move(arguments), out);
}
