#ifndef ORVALANGUAGE_TOOLS_COMMANDS_CHANGINGCOMMAND_H
#define ORVALANGUAGE_TOOLS_COMMANDS_CHANGINGCOMMAND_H

#include <string>
#include <utility>

#include "tools/orva-strings/cli/Command.h"
#include "tools/orva-strings/document/StringsDocument.h"

// How a command says how many entries it changed and how many it left: "protected 12 entries, 3 were
// already".
struct ChangeWords {
    const char* changed;
    const char* wouldChange;
    const char* oneStayed;
    const char* manyStayed;
};

// A command that changes the protected entries of a strings file.
class ChangingCommand : public Command {
public:
    // Declares FILE, --in-place, --output and --check; derived commands add their own.
    void Declare(Arguments& arguments) override;

    ExitStatus Run(const Console& console) override;

protected:
    ChangingCommand(CommandText text, ChangeWords words)
        : Command(std::move(text)), m_words(words) {}

private:
    // If a finding is an error, nothing is written.
    virtual Findings Change(StringsDocument& document, const Console& console) = 0;

    // What was done to the document, or would be.
    std::string SummaryOf(const StringsDocument& document) const;

    ChangeWords m_words;
    std::string m_file;
    std::string m_output;
    bool m_isInPlace = false;
    bool m_isCheck = false;
};

#endif
