#include "tools/orva-strings/cli/UsageError.h"
#include "tools/orva-strings/commands/ChangingCommand.h"
#include "tools/orva-strings/document/ProtectedEntries.h"

namespace {

class Rekey : public ChangingCommand {
public:
    Rekey()
        : ChangingCommand({"rekey",
                           "Re-encrypt protected entries with another key",
                           {"rekey --from old.key --to new.key --in-place Sample.strings"}},
                          {"rekeyed", "would rekey", "was not stored with the old key",
                           "were not stored with the old key"}) {}

    void Declare(Arguments& arguments) override {
        ChangingCommand::Declare(arguments);
        arguments.Add(
            {"--from", "KEYFILE", "File with the old key; - is standard input", Role::kKey, true},
            m_from);
        arguments.Add(
            {"--to", "KEYFILE", "File with the new key; - is standard input", Role::kKey, true},
            m_to);
    }

private:
    Findings Change(StringsDocument& document, const Console& console) override {
        const MasterKey from = console.ReadKey(m_from);
        const MasterKey to = console.ReadKey(m_to);
        if (from.Fingerprint() == to.Fingerprint()) {
            throw UsageError("--from and --to are the same key");
        }
        return RekeyEntries(document, from.Derive(), to.Derive());
    }

    std::string m_from;
    std::string m_to;
};

}  // namespace

std::unique_ptr<Command> MakeRekey() {
    return std::make_unique<Rekey>();
}
