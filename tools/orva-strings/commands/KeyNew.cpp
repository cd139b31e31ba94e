#include <string>
#include <string_view>

#include "clearing/ClearedArray.h"
#include "tools/orva-strings/cli/Command.h"
#include "tools/orva-strings/commands/KeyGroup.h"
#include "tools/orva-strings/system/Files.h"

namespace {

class KeyNew : public Command {
public:
    KeyNew() : Command({"new", "Make a key file that only its owner can read", {}, kKeyGroup}) {}

    void Declare(Arguments& arguments) override {
        arguments.Add({"KEYFILE", "", "The file to make; - is standard output", Role::kFile, true},
                      m_keyFile);
    }

    ExitStatus Run(const Console& console) override {
        const ClearedArray array(MasterKey::kFileText);
        auto* const chars = reinterpret_cast<char*>(array.Get());
        MasterKey::Random().WriteFileText(chars);
        const std::string_view text(chars, array.Size());
        if (m_keyFile == "-") {
            console.Out() << text;
        } else {
            CreatePrivateFile(m_keyFile, text);
        }
        return kDone;
    }

private:
    std::string m_keyFile;
};

}  // namespace

std::unique_ptr<Command> MakeKeyNew() {
    return std::make_unique<KeyNew>();
}
