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

// What kind of value an argument takes; decides how it is checked.
enum class Role {
    kText,
    kInput,   // a file to read; - is standard input, which only one argument may name
    kKey,     // likewise, a key file; the output must not replace it
    kOutput,  // the file to write the result to
    kFile,    // any other file
};

struct Argument {
    const char* name;   // "-o,--output", or "FILE" for a positional argument
    const char* value;  // what the help calls the option's value
    const char* help;
    Role role = Role::kText;
    bool isRequired = false;
    const char* excludes = nullptr;  // the name of an argument declared earlier
    const char* choices = nullptr;   // the values that it can have, as in "text|json"
};

// The arguments of one command. Each is declared with the variable that it sets, which must outlive
// the parsing. What declares them is in CommandLine.cpp, the one source that includes CLI11: each
// takes ten seconds or more to compile.
class Arguments {
public:
    explicit Arguments(CLI::App& command) : m_command(command) {}

    void Add(const Argument& argument, std::string& value);
    void Add(const Argument& argument, std::vector<std::string>& values);

    // An option without a value: --in-place=no is an error, not the opposite of --in-place.
    void AddFlag(const char* name, const char* help, bool& isSet);

    // Call after parsing. Removes the marks from the values. Throws UsageError if the values can't
    // be combined.
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
    std::vector<std::pair<Role, std::vector<std::string>*>> m_lists;
};

// CLI11 gives some arguments a meaning that they must not have here: "[…]" is a list, "++" ends a
// command, and "" is replaced by the next argument. A trailing line feed hides them from it.
// MarkSpecial adds one to each such argument or option value; Unmark removes it.
void MarkSpecial(std::vector<std::string>& arguments);
void Unmark(std::string& argument);

// The offset of an argument's value: after a long option's =, or after a short option's letter if
// anything follows it; otherwise 0.
std::size_t ValueBegin(std::string_view argument);

#endif
