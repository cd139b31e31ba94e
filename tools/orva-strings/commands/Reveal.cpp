#include <utility>

#include "tools/orva-strings/commands/ChangingCommand.h"
#include "tools/orva-strings/commands/CommonArguments.h"
#include "tools/orva-strings/document/ProtectedEntries.h"

namespace {

class Reveal : public ChangingCommand {
public:
    Reveal()
        : ChangingCommand(
              {"reveal", "Write protected entries as readable text again", {}},
              {"revealed", "would reveal", "was already readable", "were already readable"}) {}

    void Declare(Arguments& arguments) override {
        ChangingCommand::Declare(arguments);
        arguments.Add(kKeyFile, m_keyFile);
        arguments.AddFlag("--lenient",
                          "Leave what does not decode as it is, and only warn of what is wrong",
                          m_isLenient);
    }

private:
    Findings Change(StringsDocument& document, const Console& console) override {
        Findings findings = RevealEntries(document, console.ReadKey(m_keyFile).Derive());
        if (m_isLenient) {
            findings = AsWarnings(std::move(findings));
        }
        return findings;
    }

    std::string m_keyFile;
    bool m_isLenient = false;
};

}  // namespace

std::unique_ptr<Command> MakeReveal() {
    return std::make_unique<Reveal>();
}
