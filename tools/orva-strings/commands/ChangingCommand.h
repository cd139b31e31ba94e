#ifndef ORVALANGUAGE_TOOLS_COMMANDS_CHANGINGCOMMAND_H
#define ORVALANGUAGE_TOOLS_COMMANDS_CHANGINGCOMMAND_H

#include <string>

#include "tools/orva-strings/cli/Command.h"
#include "tools/orva-strings/document/StringsDocument.h"

// A command that changes a strings file.
class ChangingCommand : public Command {
public:
    // Declares FILE, --in-place and --output; derived commands add their own.
    void Declare(Arguments& arguments) override;

    ExitStatus Run(const Console& console) override;

protected:
    using Command::Command;

private:
    // If a finding is an error, nothing is written.
    virtual Findings Change(StringsDocument& document, const Console& console) = 0;

    std::string m_file;
    std::string m_output;
    bool m_isInPlace = false;
};

#endif
