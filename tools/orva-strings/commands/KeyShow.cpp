#include <optional>
#include <set>
#include <string>

#include "tools/orva-strings/cli/Command.h"
#include "tools/orva-strings/commands/CommonArguments.h"
#include "tools/orva-strings/commands/KeyGroup.h"
#include "tools/orva-strings/protection/LibraryFingerprint.h"

namespace {

class KeyShow : public Command {
public:
    KeyShow() : Command({"show", "Show a key's fingerprint, not the key", {}, kKeyGroup}) {}

    void Declare(Arguments& arguments) override {
        arguments.Add(kKeyFile, m_keyFile);
        arguments.Add(
            {"--library", "LIBRARY",
             "Show the fingerprint of the key in this built library; the file is read, never run",
             Role::kFile, false, kKeyFile.name},
            m_library);
    }

    ExitStatus Run(const Console& console) override {
        std::set<std::string> fingerprints;
        if (m_library.empty()) {
            fingerprints.insert(console.ReadKey(m_keyFile).Fingerprint());
        } else {
            fingerprints = FingerprintsIn(m_library);
        }
        if (fingerprints.size() != 1) {
            const char* const why =
                fingerprints.empty()
                    ? "the file holds no key fingerprint, so it is not libOrvaLanguage"
                    : "the file holds fingerprints of different keys";
            return console.Report({{Severity::kError, std::nullopt, why}}, m_library);
        }
        const std::string& fingerprint = *fingerprints.begin();
        console.Out() << "fingerprint: " << fingerprint << '\n'
                      << "development key: "
                      << (MasterKey::IsOfDevelopmentKey(fingerprint) ? "yes" : "no") << '\n';
        return kDone;
    }

private:
    std::string m_keyFile;
    std::string m_library;
};

}  // namespace

std::unique_ptr<Command> MakeKeyShow() {
    return std::make_unique<KeyShow>();
}
