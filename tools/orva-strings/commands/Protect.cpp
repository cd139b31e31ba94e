#include "tools/orva-strings/commands/ChangingCommand.h"
#include "tools/orva-strings/commands/CommonArguments.h"
#include "tools/orva-strings/document/ProtectedEntries.h"

namespace {

class Protect : public ChangingCommand {
public:
    Protect()
        : ChangingCommand({"protect",
                           "Encrypt every readable entry whose key begins with IDE",
                           {"protect -o Shipped.strings Source.strings",
                            "protect --in-place --key-file release.key Sample.strings"}},
                          {"protected", "would protect", "was already", "were already"}) {}

    void Declare(Arguments& arguments) override {
        ChangingCommand::Declare(arguments);
        arguments.Add(kKeyFile, m_keyFile);
        arguments.AddFlag("--force",
                          "If a value looks stored but does not decode, take it for readable text",
                          m_isForced);
    }

private:
    Findings Change(StringsDocument& document, const Console& console) override {
        const MasterKey key = console.ReadKey(m_keyFile);
        if (m_keyFile.empty() && MasterKey::IsOfDevelopmentKey(key.Fingerprint())) {
            console.Say(Severity::kNote, "protecting with the development key, which is public");
        }
        return ProtectEntries(document, key.Derive(), m_isForced);
    }

    std::string m_keyFile;
    bool m_isForced = false;
};

}  // namespace

std::unique_ptr<Command> MakeProtect() {
    return std::make_unique<Protect>();
}
