// The manual page and the help list the same commands and arguments.
#include <algorithm>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tools/orva-strings/Tool.h"
#include "tools/orva-strings/commands/Table.h"

namespace {

using Words = std::set<std::string>;

// The lines of a section of the manual page, with its hyphens' backslashes removed.
std::vector<std::string> LinesOf(const std::string& section) {
    std::ifstream page(ORVA_STRINGS_MANUAL);
    std::vector<std::string> lines;
    bool isInside = false;
    for (std::string line; std::getline(page, line);) {
        if (line.compare(0, 4, ".SH ") == 0) {
            isInside = line == ".SH " + section;
        } else if (isInside) {
            lines.push_back(std::regex_replace(line, std::regex(R"(\\-)"), "-"));
        }
    }
    return lines;
}

Words MatchesIn(const std::string& text, const char* pattern) {
    const std::regex regex(pattern);
    Words words;
    for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match) {
        words.insert(match->str());
    }
    return words;
}

// The options of each command in the manual page's synopsis.
std::map<std::string, Words> Synopsis() {
    const std::string start = ".B orva-strings ";
    std::map<std::string, Words> synopsis;
    Words* options = nullptr;
    for (const std::string& line : LinesOf("SYNOPSIS")) {
        if (line.compare(0, start.size(), start) == 0) {
            options = &synopsis[line.substr(start.size())];
        } else if (options != nullptr) {
            options->merge(MatchesIn(line, "--?[a-z][a-z-]*"));
        }
    }
    return synopsis;
}

// The items that a section of the manual page describes.
Words ItemsOf(const std::string& section) {
    Words items;
    bool isNext = false;
    for (const std::string& line : LinesOf(section)) {
        if (isNext) {
            for (const std::string& word : MatchesIn(line, "-?-?[a-z][a-z-]*( [a-z]+)?")) {
                items.insert(word);
            }
        }
        isNext = line == ".TP";
    }
    return items;
}

std::string NameOf(const Command& command) {
    const CommandText& text = command.Text();
    return (text.group.name == nullptr ? "" : std::string(text.group.name) + ' ') + text.name;
}

// The names of each option that a command's help lists, such as {"-o", "--output"}.
std::vector<Words> HelpOf(const std::string& command) {
    std::istringstream words(command);
    std::vector<std::string> arguments;
    for (std::string word; words >> word;) {
        arguments.push_back(word);
    }
    arguments.emplace_back("--help");
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(RunTool(
                  arguments, [] { return std::string(); }, out, err),
              0)
        << err.str();
    std::vector<Words> options;
    std::istringstream help(out.str());
    for (std::string line; std::getline(help, line);) {
        if (line.compare(0, 3, "  -") == 0 && line.find("--help") == std::string::npos) {
            options.push_back(MatchesIn(line.substr(2, line.find(' ', 2) - 2), "--?[a-z][a-z-]*"));
        }
    }
    return options;
}

bool HasAnyOf(const Words& words, const Words& names) {
    return std::any_of(names.begin(), names.end(),
                       [&](const std::string& name) { return words.count(name) != 0; });
}

TEST(ManualPage, NamesTheCommandsAndOptionsOfTheHelp) {
    std::map<std::string, Words> synopsis = Synopsis();
    std::size_t options = 0;
    for (const auto& command : MakeCommands()) {
        const std::string name = NameOf(*command);
        SCOPED_TRACE(name);
        ASSERT_EQ(synopsis.count(name), 1U);
        Words helped;
        for (const Words& names : HelpOf(name)) {
            EXPECT_TRUE(HasAnyOf(synopsis[name], names)) << *names.begin();
            helped.insert(names.begin(), names.end());
            ++options;
        }
        for (const std::string& option : synopsis[name]) {
            EXPECT_EQ(helped.count(option), 1U) << option;
        }
        synopsis.erase(name);
    }
    EXPECT_TRUE(synopsis.empty()) << synopsis.begin()->first << " is no command";
    EXPECT_GT(options, 10U);
}

TEST(ManualPage, DescribesEachCommandAndOption) {
    const Words commands = ItemsOf("COMMANDS");
    const Words options = ItemsOf("OPTIONS");
    for (const auto& command : MakeCommands()) {
        const std::string name = NameOf(*command);
        EXPECT_EQ(commands.count(name), 1U) << name;
        for (const Words& names : HelpOf(name)) {
            for (const std::string& option : names) {
                EXPECT_EQ(options.count(option), 1U) << name << ' ' << option;
            }
        }
    }
    EXPECT_EQ(commands.size(), MakeCommands().size());
}

}  // namespace
