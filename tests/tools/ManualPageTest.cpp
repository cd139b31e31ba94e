// The manual page agrees with the table of commands: it has the same commands, arguments and
// examples, and each description begins with the help's own text.
#include <CLI/CLI.hpp>
#include <fstream>
#include <map>
#include <ostream>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tools/orva-strings/cli/Arguments.h"
#include "tools/orva-strings/commands/Table.h"

namespace {

using Words = std::set<std::string>;
using Texts = std::map<std::string, std::string>;

// The matches of a regular expression, or those of its groups, one after the other.
std::vector<std::string> Matches(const std::string& text, const char* pattern,
                                 const std::vector<int>& groups = {0}) {
    const std::regex regex(pattern);
    return {std::sregex_token_iterator(text.begin(), text.end(), regex, groups), {}};
}

Words WordsIn(const std::string& text, const char* pattern) {
    const std::vector<std::string> matches = Matches(text, pattern);
    return {matches.begin(), matches.end()};
}

std::string Joined(const std::vector<std::string>& parts, const char* separator = " ") {
    std::string text;
    for (const std::string& part : parts) {
        text += (text.empty() || part.empty() ? "" : separator) + part;
    }
    return text;
}

// A line of the manual page as a reader sees it: without font macros and escapes.
std::string Shown(const std::string& line) {
    std::string text = line;
    if (std::smatch macro; std::regex_match(line, macro, std::regex(R"(\.([BIR]+) (.*))"))) {
        const char* const separator = macro.length(1) == 1 ? " " : "";
        text = Joined(Matches(macro.str(2), R"re("([^"]*)"|([^ "]+))re", {1, 2}), separator);
    }
    text = std::regex_replace(text, std::regex(R"(\\(f.|&|c))"), "");
    text = std::regex_replace(text, std::regex(R"(\\\(dq)"), "\"");
    return std::regex_replace(text, std::regex(R"(\\-)"), "-");
}

// The lines after a macro that is alone on its line, such as .TP, up to the next one.
struct Paragraph {
    std::string macro;
    std::vector<std::string> lines;
};

std::vector<Paragraph> Section(const std::string& name) {
    std::ifstream page(ORVA_STRINGS_MANUAL);
    std::vector<Paragraph> paragraphs;
    bool isInside = false;
    for (std::string line; std::getline(page, line);) {
        if (line.compare(0, 4, ".SH ") == 0) {
            isInside = line == ".SH " + name;
            line = ".SH";
        }
        if (isInside && std::regex_match(line, std::regex(R"(\.[A-Za-z]+)"))) {
            paragraphs.push_back({line, {}});
        } else if (isInside) {
            paragraphs.back().lines.push_back(Shown(line));
        }
    }
    return paragraphs;
}

// What a section describes, each with its description.
Texts Descriptions(const std::string& section) {
    Texts descriptions;
    for (Paragraph& paragraph : Section(section)) {
        if (paragraph.macro == ".TP") {
            const std::string tag = paragraph.lines.at(0);
            paragraph.lines.erase(paragraph.lines.begin());
            EXPECT_TRUE(descriptions.emplace(tag, Joined(paragraph.lines)).second) << tag;
        }
    }
    return descriptions;
}

Words KeysOf(const Texts& texts) {
    Words keys;
    for (const auto& [key, text] : texts) {
        keys.insert(key);
    }
    return keys;
}

// A command's arguments as a synopsis has them, such as "FILE" and "-o OUTPUT".
struct Synopsis {
    Words required;
    Words optional;

    bool operator==(const Synopsis& other) const {
        return required == other.required && optional == other.optional;
    }
};

void PrintTo(const Synopsis& synopsis, std::ostream* out) {
    *out << "required " << testing::PrintToString(synopsis.required) << ", optional "
         << testing::PrintToString(synopsis.optional);
}

// The synopses on the page, by command. Brackets enclose what is optional.
std::map<std::string, Synopsis> Synopses() {
    const char* const argument = "--?[a-z][a-z-]*( [A-Z][A-Z=]*)?|[A-Z]+";
    const char* const brackets = R"(\[[^\]]*\])";
    std::map<std::string, Synopsis> synopses;
    for (const Paragraph& paragraph : Section("SYNOPSIS")) {
        const std::string text = Joined(paragraph.lines);
        const std::string name = Joined(Matches(text, "^orva-strings ([a-z]+( [a-z]+)?)", {1}));
        const std::string rest = text.substr(text.find(name) + name.size());
        synopses[name] = {WordsIn(std::regex_replace(rest, std::regex(brackets), ""), argument),
                          WordsIn(Joined(Matches(rest, brackets)), argument)};
    }
    return synopses;
}

std::string NameOf(const Command& command) {
    const CommandText& text = command.Text();
    return (text.group.name == nullptr ? "" : std::string(text.group.name) + ' ') + text.name;
}

// What the table of commands says about an argument.
struct ArgumentText {
    std::string synopsis;  // "FILE" or "-o OUTPUT"
    std::string tag;       // "-o OUTPUT, --output OUTPUT"; empty unless it is an option
    std::string help;
    bool isRequired;
};

std::vector<ArgumentText> ArgumentsOf(Command& command) {
    CLI::App app;
    app.set_help_flag();  // not the command's own
    Arguments arguments(app);
    command.Declare(arguments);
    std::vector<ArgumentText> texts;
    for (const CLI::Option* const option : app.get_options()) {
        const std::string type = option->get_type_name();
        const std::string value = type.empty() ? "" : ' ' + type;
        std::vector<std::string> names;
        for (const std::string& name : option->get_snames()) {
            names.push_back('-' + name + value);
        }
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name + value);
        }
        texts.push_back({names.empty() ? option->get_name(true) : names.front(),
                         Joined(names, ", "), option->get_description(), option->get_required()});
    }
    return texts;
}

TEST(ManualPage, HasTheSynopsesAndExamplesOfTheCommands) {
    std::map<std::string, Synopsis> synopses;
    Words examples;
    for (const auto& command : MakeCommands()) {
        Synopsis& synopsis = synopses[NameOf(*command)];
        for (const ArgumentText& argument : ArgumentsOf(*command)) {
            (argument.isRequired ? synopsis.required : synopsis.optional).insert(argument.synopsis);
        }
        for (const char* const example : command->Text().examples) {
            examples.insert(std::string("    orva-strings ") + example);
        }
    }
    EXPECT_EQ(Synopses(), synopses);

    Words shown;
    for (const Paragraph& paragraph : Section("EXAMPLES")) {
        if (paragraph.macro == ".nf") {
            shown.insert(paragraph.lines.begin(), paragraph.lines.end());
        }
    }
    EXPECT_EQ(shown, examples);
}

// Expects the description of this to begin with this text, as a sentence.
void ExpectBegin(const Texts& descriptions, const std::string& what, const std::string& text) {
    ASSERT_EQ(descriptions.count(what), 1U) << what;
    EXPECT_EQ(descriptions.at(what).substr(0, text.size() + 1), text + '.') << what;
}

TEST(ManualPage, DescribesCommandsAndOptionsAsTheHelpDoes) {
    const Texts commands = Descriptions("COMMANDS");
    const Texts options = Descriptions("OPTIONS");
    Words names;
    Words tags = {"-h, --help", "--version"};  // the parser's own
    for (const auto& command : MakeCommands()) {
        const std::string name = NameOf(*command);
        names.insert(name);
        ExpectBegin(commands, name, command->Text().summary);
        for (const ArgumentText& argument : ArgumentsOf(*command)) {
            if (!argument.tag.empty()) {
                tags.insert(argument.tag);
                ExpectBegin(options, argument.tag, argument.help);
            }
        }
    }
    EXPECT_EQ(KeysOf(commands), names);
    EXPECT_EQ(KeysOf(options), tags);
}

}  // namespace
