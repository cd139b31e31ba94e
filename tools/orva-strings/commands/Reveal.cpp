#include "tools/orva-strings/commands/ChangingCommand.h"
#include "tools/orva-strings/commands/CommonArguments.h"
#include "tools/orva-strings/document/ProtectedEntries.h"

namespace {

class Reveal : public ChangingCommand {
public:
    Reveal() : ChangingCommand({"reveal", "Write protected entries as readable text again", {}}) {}

    void Declare(Arguments& arguments) override {
        ChangingCommand::Declare(arguments);
        arguments.Add(kKeyFile, m_keyFile);
    }

private:
    Findings Change(StringsDocument& document, const Console& console) override {
        return RevealEntries(document, console.ReadKey(m_keyFile).Derive());
    }

    std::string m_keyFile;
};

}  // namespace

std::unique_ptr<Command> MakeReveal() {
    return std::make_unique<Reveal>();
}
