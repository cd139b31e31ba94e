#ifndef ORVALANGUAGE_TOOLS_COMMANDS_CHANGINGCOMMAND_H
#define ORVALANGUAGE_TOOLS_COMMANDS_CHANGINGCOMMAND_H

#include <string>

#include "tools/orva-strings/cli/Command.h"
#include "tools/orva-strings/document/StringsDocument.h"

// A command that makes another strings file of one.
class ChangingCommand : public Command {
public:
    // FILE, --in-place and --output; a command adds its own.
    void Declare(Arguments& arguments) override;

    ExitStatus Run(const Console& console) override;

protected:
    using Command::Command;

private:
    // With an error among the findings, nothing is written.
    virtual Findings Change(StringsDocument& document, const Console& console) = 0;

    std::string m_file;
    std::string m_output;
    bool m_isInPlace = false;
};

#endif
