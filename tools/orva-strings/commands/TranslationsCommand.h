#ifndef ORVALANGUAGE_TOOLS_COMMANDS_TRANSLATIONSCOMMAND_H
#define ORVALANGUAGE_TOOLS_COMMANDS_TRANSLATIONSCOMMAND_H

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/orva-strings/checks/RuleFinding.h"
#include "tools/orva-strings/checks/Translations.h"
#include "tools/orva-strings/cli/Command.h"

// A file, valid while it is taken.
struct TranslatedFile {
    std::string name;  // in the output
    std::string_view bytes;
    Translations translations;
    RuleFindings findings;  // of check
    bool hasBase;           // whether it was compared with an earlier state
};

// A command that shows how far the translations in strings files are.
class TranslationsCommand : public Command {
public:
    // Declares FILE, --base, --reference, --key-file and --stdin-name; derived commands add their
    // own.
    void Declare(Arguments& arguments) override;

    ExitStatus Run(const Console& console) override;

protected:
    explicit TranslationsCommand(CommandText text) : Command(std::move(text)) {}

private:
    // Takes the files that can be read. Sets hasTaken if there is one.
    ExitStatus TakeFiles(const Console& console, bool& hasTaken);

    // Takes a file that could be read, in the order of the arguments.
    virtual ExitStatus Take(const TranslatedFile& file, const Console& console) = 0;

    // Writes the output, if a file was taken.
    virtual void Write(const Console& console) = 0;

    std::vector<std::string> m_files;
    std::string m_base;
    std::string m_reference;
    std::string m_keyFile;
    std::string m_stdinName;
};

#endif
