#ifndef ORVALANGUAGE_TOOLS_CLI_ARGUMENTS_H
#define ORVALANGUAGE_TOOLS_CLI_ARGUMENTS_H

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

// What an argument's value is, which decides how it is checked.
enum class Role {
    kText,
    kInput,   // a file to read; - is standard input, which only one argument may name
    kKey,     // a key file to read; the same, and the output must not replace it
    kOutput,  // the file to write the result to
    kFile,    // any other file
};

struct Argument {
    const char* name;   // "-o,--output", or "FILE" for one that is known by its position
    const char* value;  // what the help calls an option's value
    const char* help;
    Role role = Role::kText;
    bool isRequired = false;
    const char* excludes = nullptr;  // the name of an argument declared before
};

// The arguments of one command: each is declared with the variable that it sets, which must outlive
// the parsing.
class Arguments {
public:
    explicit Arguments(CLI::App& command) : m_command(command) {}

    void Add(const Argument& argument, std::string& value);
    void Add(const Argument& argument, std::vector<std::string>& values);

    // An option without a value: --in-place=no is an error, and not the opposite of --in-place.
    void AddFlag(const char* name, const char* help, bool& isSet);

    // After parsing: takes the parser's marks off the values. Throws UsageError if they don't go
    // together.
    void Finish() const;

    const std::vector<std::string>& Flags() const { return m_flags; }

private:
    void Declare(const Argument& argument, CLI::Option& option);
    bool HasOneInput() const;
    const std::string* OutputOverAKey() const;

    CLI::App& m_command;
    std::map<std::string, CLI::Option*> m_options;
    std::vector<std::string> m_flags;
    std::vector<std::pair<Role, std::string*>> m_values;
    std::vector<std::vector<std::string>*> m_lists;
};

// Some arguments mean something to the parser that they must not mean here: a list in brackets, the
// sign that ends a command, and an empty one, for which it takes the next. A line feed at their end
// keeps it from seeing that. MarkSpecial adds one to each of those, also within an option's;
// Unmark takes it off.
void MarkSpecial(std::vector<std::string>& arguments);
void Unmark(std::string& argument);

// Where an argument's value begins: after a long option's =, after a short option's letter if
// anything follows, and otherwise at the start.
std::size_t ValueBegin(std::string_view argument);

#endif
