#include "tools/orva-strings/commands/ChangingCommand.h"
#include "tools/orva-strings/document/ProtectedEntries.h"

namespace {

class Rekey : public ChangingCommand {
public:
    Rekey()
        : ChangingCommand({"rekey",
                           "Store protected entries with another key",
                           {"rekey --from old.key --to new.key --in-place Sample.strings"}}) {}

    void Declare(Arguments& arguments) override {
        ChangingCommand::Declare(arguments);
        arguments.Add({"--from", "KEYFILE", "Key file they are stored with; - is standard input",
                       Role::kKey, true},
                      m_from);
        arguments.Add({"--to", "KEYFILE", "Key file to store them with; - is standard input",
                       Role::kKey, true},
                      m_to);
    }

private:
    Findings Change(StringsDocument& document, const Console& console) override {
        return RekeyEntries(document, console.ReadKey(m_from).Derive(),
                            console.ReadKey(m_to).Derive());
    }

    std::string m_from;
    std::string m_to;
};

}  // namespace

std::unique_ptr<Command> MakeRekey() {
    return std::make_unique<Rekey>();
}
