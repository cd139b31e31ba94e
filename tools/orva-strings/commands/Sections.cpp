#include <algorithm>
#include <iomanip>
#include <set>
#include <string>
#include <vector>

#include "protection/ProtectedForm.h"
#include "tools/orva-strings/cli/Command.h"
#include "tools/orva-strings/cli/Printable.h"
#include "tools/orva-strings/commands/CommonArguments.h"
#include "tools/orva-strings/document/NoSection.h"
#include "tools/orva-strings/document/StringsDocument.h"

namespace {

class Sections : public Command {
public:
    Sections()
        : Command({"sections",
                   "List the sections: line, number of entries, how many are protected, name",
                   {}}) {}

    void Declare(Arguments& arguments) override { arguments.Add(kStringsFile, m_file); }

    ExitStatus Run(const Console& console) override {
        const StringsDocument document(console.Read(m_file).bytes);
        const std::vector<StringsDocument::Section> sections = document.Sections();
        if (sections.empty()) {
            return console.Report({NoSection()}, m_file);
        }
        std::ostream& out = console.Out();
        out << "  LINE  ENTRIES  PROTECTED  SECTION\n";
        for (const StringsDocument::Section& section : sections) {
            const std::set<std::string> keys = section.Keys();
            const auto protectedKeys =
                std::count_if(keys.begin(), keys.end(),
                              [](const std::string& key) { return IsProtectedKey(key.c_str()); });
            out << std::setw(6) << section.line + 1 << std::setw(9) << keys.size() << std::setw(11)
                << protectedKeys << "  " << Printable(section.name) << '\n';
        }
        return kDone;
    }

private:
    std::string m_file;
};

}  // namespace

std::unique_ptr<Command> MakeSections() {
    return std::make_unique<Sections>();
}
