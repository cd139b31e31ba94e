#ifndef ORVALANGUAGE_TOOLS_CLI_COMMAND_H
#define ORVALANGUAGE_TOOLS_CLI_COMMAND_H

#include <memory>
#include <utility>
#include <vector>

#include "tools/orva-strings/cli/Arguments.h"
#include "tools/orva-strings/cli/Console.h"

// Commands that share their first word, such as "key new" and "key show".
struct CommandGroup {
    const char* name = nullptr;  // null: the command is in no group
    const char* summary = "";
};

// What a command's help says.
struct CommandText {
    const char* name;
    const char* summary;
    std::vector<const char*> examples;  // without the leading "orva-strings"
    CommandGroup group = {};
};

// A command. Each has a file in commands/ that says everything about it; Table.cpp there lists it.
class Command {
public:
    virtual ~Command() = default;
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;

    const CommandText& Text() const { return m_text; }

    // Declares the arguments. They are set once, before Run.
    virtual void Declare(Arguments& arguments) = 0;

    // Returns kDone or kFindings. Throws std::exception where the exit status is kUsageOrSystem.
    virtual ExitStatus Run(const Console& console) = 0;

protected:
    explicit Command(CommandText text) : m_text(std::move(text)) {}

private:
    CommandText m_text;
};

using Commands = std::vector<std::unique_ptr<Command>>;

#endif
